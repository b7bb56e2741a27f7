/* Python.h includes this file where the interpreter was built with it. Cross compilers bring none, and nobody here uses it. */
