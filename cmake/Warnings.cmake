# Warnings that the whole project is clean of.
set(CVCELLS_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
