' exit: 1
Exit For
