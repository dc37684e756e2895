// The headers that tests share are compiled with this file.
