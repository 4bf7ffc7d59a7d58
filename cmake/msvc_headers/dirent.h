#error "Visual C++ has no <dirent.h>"
