# The installed library: headers, CMake package, pkg-config file.
