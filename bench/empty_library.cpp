// The least that a library can be.
