' What is written for whoever looks for faults goes to standard error, a line at a time.
Print "one"
System.DebugLog("two: é")
DebugLog ""
Print "three"
