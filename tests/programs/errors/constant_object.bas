' exit: 1
Const Five As Variant = 5
