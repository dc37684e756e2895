' exit: 1
Print FacQTX("three")
