' exit: 1
Print "no end
