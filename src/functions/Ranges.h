// Walks over the values of arguments.
#pragma once

#include "functions/Arguments.h"
#include "values/BulkRead.h"

#include <vector>

class CCCellManager;

namespace cells::internal {

// The values of one argument in order. The walk is closed with the object.
//
//     ValueWalk walk(ctx, formula, current);
//     if (!walk.IsOpen()) return result.Set(errRef);
//     while (walk.Next(value)) ...
//
// A constant, an operator or (where the host allows it) a single cell is read at once, and a region
// by its manager, without the calls of the protocol between; what is delivered is the same.
class ValueWalk {
public:
    ValueWalk(CTX * ctx, CCFormula * formula, CCRef const * current);
    ValueWalk(ValueWalk const &) = delete;
    ValueWalk & operator=(ValueWalk const &) = delete;
    ~ValueWalk();

    bool IsOpen() const { return m_Kind != Kind::kFailed; }
    bool Next(CCCellValue & value);
    // Passes the next value over, where that needs no reading.
    bool Skip();
    // The position from 0, at the beginning of the walk, of the first value that is the same number
    // or text; -1 for none. False where only walking tells.
    bool FindKey(CCCellValue const & key, int & position);
    // Width and height; only while open.
    bool Size(CSize & size);

private:
    enum class Kind { kFailed, kWalk, kRegion, kConstant, kOperator, kCell, kDone };
    static Kind KindOf(CTX * ctx, CCFormula * formula);

    CTX * m_Ctx;
    CCFormula * m_Formula;
    CCRef const * m_Current;
    Kind m_Kind;
    CCCellManager * m_Manager = nullptr; // of a region
    ushort m_Handle = 0;
};

// Calls `visit` with every value of every argument; false where one cannot be opened.
template <typename Visit>
bool ForEachValue(CTX * ctx, CCFormulaList const * args, CCRef const * current, Visit && visit) {
    CCCellValue value;
    for (; args; args = args->next) {
        ValueWalk walk(ctx, args->formula, current);
        if (!walk.IsOpen()) return false;
        while (walk.Next(value)) visit(value);
    }
    return true;
}

// The same until `visit` gives another status than done.
template <typename Visit>
Status TryEachValue(CTX * ctx, CCFormulaList const * args, CCRef const * current, Visit && visit) {
    CCCellValue value;
    for (; args; args = args->next) {
        ValueWalk walk(ctx, args->formula, current);
        if (!walk.IsOpen()) return Status::kBadReference;
        while (walk.Next(value)) {
            Status const status = visit(value);
            if (status != Status::kDone) return status;
        }
    }
    return Status::kDone;
}

// Every number of every argument, past blanks; any other value ends it with error 3.
template <typename Visit>
Status TryEachNumber(CTX * ctx, CCFormulaList const * args, CCRef const * current, Visit && visit) {
    return TryEachValue(ctx, args, current, [&](CCCellValue const & value) {
        if (value.IsEmpty()) return Status::kDone;
        return value.IsNumber() ? visit(value.GetNumber()) : Status::kBadValue;
    });
}

// Two arguments of one size, position by position; `mismatch` where the sizes differ.
template <typename Visit>
Status TryEachPair(CTX * ctx, CCFormula * first, CCFormula * second, CCRef const * current,
                   Status mismatch, Visit && visit) {
    ValueWalk a(ctx, first, current), b(ctx, second, current);
    CSize sizeA, sizeB;
    if (!a.IsOpen() || !b.IsOpen()) return Status::kBadReference;
    if (!a.Size(sizeA) || !b.Size(sizeB)) return Status::kBadReference;
    if (sizeA != sizeB) return mismatch;
    CCCellValue x, y;
    while (a.Next(x) && b.Next(y)) {
        Status const status = visit(x, y);
        if (status != Status::kDone) return status;
    }
    return Status::kDone;
}

// Gives every number of one argument, or of all, to the sink and skips everything else; regions go
// in bulk where the host serves them so. kBadReference where one cannot be opened.
Status ForEachNumberOf(CTX * ctx, CCFormula * formula, CCRef const * current, NumberSink & sink);
Status ForEachNumber(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                     NumberSink & sink);

struct NumberStats {
    double sum = 0, sumSquares = 0, count = 0;
};

// Sum, sum of squares and count of all numbers, gathered by argument.
Status ListStats(CTX * ctx, CCFormulaList const * args, CCRef const * current, NumberStats & stats);

// The same of the first argument alone.
Status FirstArgStats(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                     NumberStats & stats);

struct PairSums {
    double n = 0, sa = 0, saa = 0, sb = 0, sbb = 0, sab = 0;
};

// Sums over two arguments of one size. Every position counts: what is no number is a zero in the
// sums and in the count. There is no skipping by pairs.
Status PairStats(CTX * ctx, CCFormula * first, CCFormula * second, CCRef const * current,
                 PairSums & sums);

// All numbers, in walking order.
Status CollectDoubles(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                      std::vector<double> & out);

} // namespace cells::internal
