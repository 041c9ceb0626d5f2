// Formula trees that are being walked.
//
// What a formula asks of another document may come back as a change of that very formula. A tree
// that is replaced meanwhile therefore lives until the outermost walk is over.
#pragma once

#include "formula/CCFormula.h"

#include <memory>

namespace cells::internal {

// Stands in every function that walks a cell's tree and calls out.
class TreesInUse {
public:
    TreesInUse() { ++s_walks; }
    TreesInUse(TreesInUse const &) = delete;
    TreesInUse & operator=(TreesInUse const &) = delete;
    ~TreesInUse() {
        if (--s_walks == 0 && s_replaced) FreeReplaced();
    }

    static bool IsAny() { return s_walks > 0; }
    // Destroys a tree as soon as nobody can be walking it.
    static void Discard(std::unique_ptr<CCFormula> tree);

private:
    struct Replaced;
    static void FreeReplaced();

    static int s_walks;
    static Replaced * s_replaced;
};

} // namespace cells::internal
