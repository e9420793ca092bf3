# What differs from the defaults of cmake/BuildConstants.cmake; scripts/package.sh adds what it is given.
