#include "functions/Ranges.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/Dereference.h"

namespace cells::internal {

ValueWalk::Kind ValueWalk::KindOf(CTX * ctx, CCFormula * formula) {
    switch (formula->Kind()) {
    case kConstFormula:
        return static_cast<CCConstFormula *>(formula)->IsOpen() ? Kind::kWalk : Kind::kConstant;
    case kOpFormula:
        return static_cast<CCOpFormula *>(formula)->IsOpen() ? Kind::kWalk : Kind::kOperator;
    case kRefFormula: {
        CCRef const * const ref = static_cast<CCRefFormula *>(formula)->GetRef();
        CCCellManager const * const manager = ctx->manager();
        if (!ref || !manager) return Kind::kWalk;
        if (ref->Kind() == kRefRegion) return Kind::kRegion;
        return ref->Kind() == kRefCell && manager->ReadsCellsDirectly() ? Kind::kCell : Kind::kWalk;
    }
    default:
        return Kind::kWalk;
    }
}

ValueWalk::ValueWalk(CTX * ctx, CCFormula * formula, CCRef const * current)
    : m_Ctx(ctx), m_Formula(formula), m_Current(current), m_Kind(KindOf(ctx, formula)) {
    if (m_Kind == Kind::kRegion) {
        m_Manager = ctx->manager();
        m_Handle = m_Manager->OpenRef(static_cast<CCRefFormula *>(formula)->GetRef());
    } else if (m_Kind == Kind::kWalk) {
        m_Handle = formula->OpenRef(ctx, current);
    } else {
        return;
    }
    if (!m_Handle) m_Kind = Kind::kFailed;
}

ValueWalk::~ValueWalk() {
    if (!m_Handle) return;
    try {
        if (m_Manager)
            m_Manager->CloseRef(m_Handle);
        else
            m_Formula->CloseRef(m_Ctx, m_Handle, m_Current);
    } catch (...) {
        // The walk is over; what the host could not close it keeps.
    }
}

bool ValueWalk::Next(CCCellValue & value) {
    switch (m_Kind) {
    case Kind::kRegion:
        return m_Manager->NextValue(m_Handle, value) != 0;
    case Kind::kWalk:
        return m_Formula->NextValue(m_Ctx, m_Handle, value, m_Current) != 0;
    case Kind::kConstant:
        value.Set(static_cast<CCConstFormula *>(m_Formula)->GetValue());
        break;
    case Kind::kOperator:
        m_Formula->Eval(m_Ctx, value, m_Current);
        DereferenceStep(m_Ctx, value);
        break;
    case Kind::kCell: {
        CCRef const * const ref = static_cast<CCRefFormula *>(m_Formula)->GetRef();
        if (!m_Ctx->manager()->GetValue(ref, value, 0)) value.Set(errRef);
        break;
    }
    default:
        return false;
    }
    m_Kind = Kind::kDone;
    return true;
}

bool ValueWalk::Skip() {
    if (m_Kind == Kind::kRegion) return m_Manager->SkipValue(m_Handle) != 0;
    CCCellValue value;
    return Next(value);
}

bool ValueWalk::FindKey(CCCellValue const & key, int & position) {
    return m_Kind == Kind::kRegion &&
           m_Manager->FindKey(static_cast<CCRefFormula *>(m_Formula)->GetRef(), key, position);
}

bool ValueWalk::Size(CSize & size) {
    if (m_Kind == Kind::kRegion) return m_Manager->RefSize(m_Handle, size) != 0;
    if (m_Kind == Kind::kWalk) return m_Formula->RefSize(m_Ctx, m_Handle, size, m_Current) != 0;
    size = CSize(1, 1);
    return IsOpen();
}

Status ForEachNumberOf(CTX * ctx, CCFormula * formula, CCRef const * current, NumberSink & sink) {
    if (formula->GetType() == kRefFormula) {
        CCRef const * const ref = static_cast<CCRefFormula *>(formula)->GetRef();
        CCCellManager * const manager = ctx->manager();
        if (ref && manager && ref->GetType() == kRefRegion && manager->ReadNumbers(ref, sink))
            return Status::kDone;
    }
    ValueWalk walk(ctx, formula, current);
    if (!walk.IsOpen()) return Status::kBadReference;
    CCCellValue value;
    while (walk.Next(value)) {
        if (!value.IsNumber()) continue;
        double const number = value.GetNumber();
        sink.Take(&number, 1);
    }
    return Status::kDone;
}

Status ForEachNumber(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                     NumberSink & sink) {
    for (; args; args = args->next) {
        Status const status = ForEachNumberOf(ctx, args->formula, current, sink);
        if (status != Status::kDone) return status;
    }
    return Status::kDone;
}

namespace {

struct StatsSink final : NumberSink {
    NumberStats stats;
    void Take(double const * numbers, std::size_t count) override {
        for (std::size_t i = 0; i < count; ++i) {
            stats.sum += numbers[i];
            stats.sumSquares += numbers[i] * numbers[i];
        }
        stats.count += double(count);
    }
};

struct CollectSink final : NumberSink {
    explicit CollectSink(std::vector<double> & numbers) : out(numbers) {}
    std::vector<double> & out;
    void Take(double const * numbers, std::size_t count) override {
        out.insert(out.end(), numbers, numbers + count);
    }
};

} // namespace

Status ListStats(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                 NumberStats & stats) {
    for (; args; args = args->next) {
        StatsSink sink;
        Status const status = ForEachNumberOf(ctx, args->formula, current, sink);
        if (status != Status::kDone) return status;
        stats.sum += sink.stats.sum;
        stats.sumSquares += sink.stats.sumSquares;
        stats.count += sink.stats.count;
    }
    return Status::kDone;
}

Status FirstArgStats(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                     NumberStats & stats) {
    StatsSink sink;
    if (!args) return Status::kDone;
    Status const status = ForEachNumberOf(ctx, args->formula, current, sink);
    stats = sink.stats;
    return status;
}

Status PairStats(CTX * ctx, CCFormula * first, CCFormula * second, CCRef const * current,
                 PairSums & sums) {
    auto const numberOf = [](CCCellValue const & value) {
        return value.IsNumber() ? value.GetNumber() : 0.0;
    };
    return TryEachPair(ctx, first, second, current, Status::kBadReference,
                       [&](CCCellValue const & x, CCCellValue const & y) {
                           double const a = numberOf(x), b = numberOf(y);
                           sums.n += 1;
                           sums.sa += a;
                           sums.saa += a * a;
                           sums.sb += b;
                           sums.sbb += b * b;
                           sums.sab += a * b;
                           return Status::kDone;
                       });
}

Status CollectDoubles(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                      std::vector<double> & out) {
    out.clear();
    CollectSink sink(out);
    return ForEachNumber(ctx, args, current, sink);
}

} // namespace cells::internal
