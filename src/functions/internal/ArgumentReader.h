// ArgumentReader: the arguments of a call one after the other, each tested as it is read.
//
//     ArgumentReader read(ctx, result, args, current);
//     double const settlement = read.Date(), price = read.Positive();
//     int const basis = read.Basis(4);
//     if (!read.Ok()) return;                 // `result` holds the error
#pragma once

#include "functions/internal/DateArguments.h"

#include <cmath>

namespace cells::internal {

class ArgumentReader {
public:
    ArgumentReader(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current)
        : m_Ctx(ctx), m_Result(result), m_Args(args), m_Current(current) {}

    bool Ok() const { return m_Ok; }
    bool HasMore() const { return m_Args != nullptr; }

    double Date() {
        double date = 0;
        if (m_Ok && !GetDate(m_Ctx, m_Result, date, m_Args, m_Current)) m_Ok = false;
        Advance();
        return date;
    }
    double Number() {
        double number = 0;
        if (m_Ok && !GetNumbers(m_Ctx, m_Result, &number, 1, m_Args, m_Current)) Fail(errValue);
        Advance();
        return number;
    }
    double NumberOr(double missing) { return HasMore() ? Number() : missing; }
    double Positive() {
        double const number = Number();
        Require(number > 0);
        return number;
    }
    double NotNegative() {
        double const number = Number();
        Require(number >= 0);
        return number;
    }
    double Floored() { return std::floor(Number()); }
    int Basis(int missing) {
        if (!HasMore()) return missing;
        double const basis = Number();
        Require(basis >= 0 && basis < 5);
        return m_Ok ? int(basis) : missing;
    }
    // Coupons a year: 1, 2 or 4.
    int Frequency() {
        double const frequency = Floored();
        Require(frequency == 1 || frequency == 2 || frequency == 4);
        return m_Ok ? int(frequency) : 1;
    }

    // Ends the call with an error where the condition does not hold.
    void Require(bool condition, CellError error = errValue) {
        if (m_Ok && !condition) Fail(error);
    }

private:
    void Fail(CellError error) {
        m_Ok = false;
        m_Result.Set(error);
    }
    void Advance() {
        if (m_Args) m_Args = m_Args->next;
    }

    CTX * m_Ctx;
    CCCellValue & m_Result;
    CCFormulaList const * m_Args;
    CCRef const * m_Current;
    bool m_Ok = true;
};

} // namespace cells::internal
