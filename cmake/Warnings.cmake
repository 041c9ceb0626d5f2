# Warnings that the whole project is clean of.
set(CVCELLS_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 warns of overlaps inside std::string's own operator+ (its bug 105651).
    list(APPEND CVCELLS_WARNINGS -Wno-restrict)
endif()
