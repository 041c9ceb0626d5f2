#include "formula/OperatorObjects.h"

#include "formula/CCFunc.h"

#include <memory>

namespace cells::internal {
namespace {

// Formulas point to the objects as long as the process lives.
struct Objects {
    std::unique_ptr<CCFunc> functions[kOperators];
    Objects() {
        for (int op = 0; op < kOperators; ++op)
            if (Operator(op) >= Operator::kRange)
                functions[op] = std::make_unique<CCRefFunc>();
            else
                functions[op] = std::make_unique<CCFunc>();
    }
};

} // namespace

CCFunc * OperatorObject(Operator op) {
    static Objects const * const objects = new Objects;
    return objects->functions[int(op)].get();
}

} // namespace cells::internal
