' exit: 1
Print "never"
Print FacQTXX(3)
