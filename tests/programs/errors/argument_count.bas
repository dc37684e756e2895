' exit: 1
Print HypotQTX(3)
