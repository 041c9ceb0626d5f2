// Securities: discounts, interest at maturity, coupons.
#include "functions/Shapes.h"
#include "functions/internal/ArgumentReader.h"
#include "functions/internal/Families.h"

#include <cmath>

namespace cells::internal {
namespace {

// Discounted securities: two dates, two positive numbers and a basis.

struct Discounted {
    double days, yearDays, a, b;
    bool ok;
};

Discounted ReadDiscounted(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                          CCRef const * current, int basisIfNone) {
    ArgumentReader read(ctx, result, args, current);
    double const settlement = read.Date(), maturity = read.Date();
    read.Require(settlement < maturity);
    double const a = read.Positive(), b = read.Positive();
    int const basis = read.Basis(basisIfNone);
    if (!read.Ok()) return {0, 0, 0, 0, false};
    return {DayCount(basis, settlement, maturity), YearDays(basis, settlement), a, b, true};
}

using DiscountFormula = double (*)(Discounted const & s);

template <DiscountFormula Formula, int BasisIfNone, uchar Class>
void OfDiscounted(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    Discounted const s = ReadDiscounted(ctx, result, args, current, BasisIfNone);
    if (s.ok) SetStatusResult(ctx, Status::kDone, result, Formula(s), Class);
}

double DiscountRate(Discounted const & s) { return s.yearDays * ((s.b - s.a) / s.b) / s.days; }
double InterestRate(Discounted const & s) { return s.yearDays * ((s.b - s.a) / s.a) / s.days; }
double DiscountedPrice(Discounted const & s) { return s.b - s.days * s.b * s.a / s.yearDays; }
double Received(Discounted const & s) { return s.a / (1 - s.days * s.b / s.yearDays); }

// The rate is read as dates are: a text that is a date passes, and a rate beyond the calendar does
// not. Calls of saved sheets must be taken and refused as before.
void EvalAccruedInterest(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                         CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const issue = read.Date(), settlement = read.Date();
    read.Require(issue < settlement);
    double const rate = read.Date();
    read.Require(rate > 0);
    double const par = read.NumberOr(1000);
    read.Require(par > 0);
    int const basis = read.Basis(4);
    if (!read.Ok()) return;
    SetNumber(result, DayCount(basis, issue, settlement) * par * rate / YearDays(basis, issue));
}

void EvalPriceAtMaturity(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                         CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const settlement = read.Date(), maturity = read.Date(), issue = read.Date();
    read.Require(settlement < maturity);
    double const rate = read.Positive(), yield = read.Positive();
    int const basis = read.Basis(0);
    if (!read.Ok()) return;
    double const B = YearDays(basis, settlement), A = DayCount(basis, issue, settlement),
                 DIM = DayCount(basis, issue, maturity),
                 DSM = DayCount(basis, settlement, maturity);
    SetNumber(result,
              ((DIM / B) * rate * 100 + 100) / ((DSM / B) * yield + 1) - (A / B) * rate * 100);
}

// Coupons. The steps go from the starting date by a growing multiple, so that days that a short
// month has cut do not drift.

struct Coupons {
    double settlement, maturity;
    int frequency, basis;

    // The coupons around the settlement, back from maturity.
    bool Around(double & before, double & after) const {
        before = after = maturity;
        for (int k = 1; before > settlement; ++k) {
            after = before;
            if (!AddMonths(maturity, -double(k) * (12 / frequency), before)) return false;
        }
        return true;
    }
    // Steps from the settlement to maturity or past it, and the date they reach.
    bool Ahead(int & steps, double & reached) const {
        reached = settlement;
        for (steps = 0; reached < maturity;) {
            ++steps;
            if (!AddMonths(settlement, double(steps) * (12 / frequency), reached)) return false;
        }
        return true;
    }

    Outcome Previous() const {
        double before, after;
        return Around(before, after) ? Outcome(before) : Status::kBadValue;
    }
    Outcome Next() const {
        double before, after;
        return Around(before, after) ? Outcome(after) : Status::kBadValue;
    }
    Outcome DaysOfPeriod() const {
        double before, after;
        return Around(before, after) ? Outcome(DayCount(basis, before, after)) : Status::kBadValue;
    }
    Outcome DaysToNext() const {
        double before, after;
        return Around(before, after) ? Outcome(DayCount(basis, settlement, after))
                                     : Status::kBadValue;
    }
    // By how far the settlement's own steps overshoot maturity.
    Outcome DaysFromPrevious() const {
        int steps;
        double reached;
        return Ahead(steps, reached) ? Outcome(DayCount(basis, maturity, reached))
                                     : Status::kBadValue;
    }
    Outcome Count() const {
        int steps;
        double reached;
        return Ahead(steps, reached) ? Outcome(double(steps)) : Status::kBadValue;
    }
};

template <Outcome (Coupons::*Formula)() const, uchar Class>
void OfCoupons(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const settlement = read.Date(), maturity = read.Date();
    read.Require(settlement < maturity);
    int const frequency = read.Frequency(), basis = read.Basis(4);
    if (!read.Ok()) return;
    Coupons const coupons{settlement, maturity, frequency, basis};
    Outcome const outcome = (coupons.*Formula)();
    SetStatusResult(ctx, outcome.status, result, outcome.number, Class);
}

// A security with coupons: two dates, three numbers, a frequency and a basis.
struct Bond {
    Coupons coupons;
    double rate, a, b; // a is a price or a yield, b the redemption
    Outcome accrued = 0.0, period = 0.0;
    bool ok;
};

Bond ReadBond(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current,
              bool priceIsGiven) {
    ArgumentReader read(ctx, result, args, current);
    double const settlement = read.Date(), maturity = read.Date();
    read.Require(settlement < maturity);
    double const rate = read.NotNegative(), a = priceIsGiven ? read.Positive() : read.NotNegative(),
                 redemption = read.Positive();
    int const frequency = read.Frequency(), basis = read.Basis(4);
    Bond bond{{settlement, maturity, frequency, basis}, rate, a, redemption, 0.0, 0.0, read.Ok()};
    if (!bond.ok) return bond;
    bond.accrued = bond.coupons.DaysFromPrevious();
    bond.period = bond.coupons.DaysOfPeriod();
    bond.ok = bond.accrued.status == Status::kDone && bond.period.status == Status::kDone;
    if (!bond.ok) result.Set(errValue);
    return bond;
}

// A closed formula at any number of coupons, where a yield of several coupons has none: saved
// sheets keep their results by it.
void EvalYield(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    Bond const bond = ReadBond(ctx, result, args, current, true);
    if (!bond.ok) return;
    Coupons const & c = bond.coupons;
    double const f = c.frequency, A = bond.accrued.number, E = bond.period.number,
                 d = DayCount(c.basis, c.settlement, c.maturity);
    SetNumber(result,
              ((bond.b / 100 + bond.rate / f) / (bond.a / 100 + (A / E) * bond.rate / f) - 1) *
                  (f * E / d));
}

void EvalPrice(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    Bond const bond = ReadBond(ctx, result, args, current, false);
    if (!bond.ok) return;
    Outcome const toNext = bond.coupons.DaysToNext(), count = bond.coupons.Count();
    double const f = bond.coupons.frequency, A = bond.accrued.number, E = bond.period.number,
                 DSC = toNext.number, N = count.number, c = bond.rate * 100 / f, u = 1 + bond.a / f;
    double price = 0;
    for (double k = 1; k <= N; ++k) price += c / std::pow(u, k - 1 + DSC / E);
    SetNumber(result, price + bond.b / std::pow(u, N - 1 + DSC / E) - c * A / E);
}

constexpr FunctionRow kRows[] = {
    {13195, L"ACCRINTM", L"issue; settlement; rate; par; basis", "ddn[nn]",
     L"Interest accrued at maturity.", L"ACCRINTM(\"1/1/2026\",\"7/1/2026\",0.1)", L"50",
     SinglesBetween<3, 5>, EvalAccruedInterest},
    {13197, L"COUPDAYBS", L"settlement; maturity; frequency; basis", "ddn[n]",
     L"Days from the coupon period's beginning to settlement.",
     L"COUPDAYBS(\"2/1/2026\",\"7/1/2026\",2)", L"30", SinglesBetween<3, 4>,
     OfCoupons<&Coupons::DaysFromPrevious, C_NF_GENERAL>},
    {13198, L"COUPDAYS", L"settlement; maturity; frequency; basis", "ddn[n]",
     L"Days of the coupon period that holds settlement.", L"COUPDAYS(\"2/1/2026\",\"7/1/2026\",2)",
     L"180", SinglesBetween<3, 4>, OfCoupons<&Coupons::DaysOfPeriod, C_NF_GENERAL>},
    {13199, L"COUPDAYSNC", L"settlement; maturity; frequency; basis", "ddn[n]",
     L"Days from settlement to the next coupon.", L"COUPDAYSNC(\"2/1/2026\",\"7/1/2026\",2)",
     L"150", SinglesBetween<3, 4>, OfCoupons<&Coupons::DaysToNext, C_NF_GENERAL>},
    {13200, L"COUPNCD", L"settlement; maturity; frequency; basis", "ddn[n]",
     L"Next coupon date after settlement.", L"COUPNCD(\"2/1/2026\",\"7/1/2027\",2)", L"7/1/2026",
     SinglesBetween<3, 4>, OfCoupons<&Coupons::Next, C_NF_DATE>},
    {13201, L"COUPNUM", L"settlement; maturity; frequency; basis", "ddn[n]",
     L"Number of coupons until maturity.", L"COUPNUM(\"1/1/2026\",\"7/1/2026\",2)", L"1",
     SinglesBetween<3, 4>, OfCoupons<&Coupons::Count, C_NF_GENERAL>},
    {13202, L"COUPPCD", L"settlement; maturity; frequency; basis", "ddn[n]",
     L"Coupon date at or before settlement.", L"COUPPCD(\"2/1/2026\",\"7/1/2027\",2)", L"1/1/2026",
     SinglesBetween<3, 4>, OfCoupons<&Coupons::Previous, C_NF_DATE>},
    {13204, L"DISC", L"settlement; maturity; price; redemption; basis", "ddnn[n]",
     L"Discount rate of a security.", L"DISC(\"1/1/2026\",\"7/1/2026\",95,100)", L"10.00%",
     SinglesBetween<4, 5>, OfDiscounted<DiscountRate, 4, C_NF_PERCENT>},
    {13208, L"INTRATE", L"settlement; maturity; investment; redemption; basis", "ddnn[n]",
     L"Interest rate of a fully invested security.", L"INTRATE(\"1/1/2026\",\"7/1/2026\",100,105)",
     L"10.00%", SinglesBetween<4, 5>, OfDiscounted<InterestRate, 4, C_NF_PERCENT>},
    {13214, L"PRICE", L"settlement; maturity; rate; yield; redemption; frequency; basis",
     "ddnnnn[n]", L"Price of a security with coupons.",
     L"PRICE(\"1/1/2026\",\"1/1/2027\",0.1,0.1,100,1)", L"100", SinglesBetween<6, 7>, EvalPrice},
    {13215, L"PRICEDISC", L"settlement; maturity; discount; redemption; basis", "ddnn[n]",
     L"Price of a discounted security.", L"PRICEDISC(\"1/1/2026\",\"7/1/2026\",0.1,100)", L"95",
     SinglesBetween<4, 5>, OfDiscounted<DiscountedPrice, 0, C_NF_GENERAL>},
    {13216, L"PRICEMAT", L"settlement; maturity; issue; rate; yield; basis", "dddnn[n]",
     L"Price of a security with interest at maturity.",
     L"PRICEMAT(\"1/1/2026\",\"1/1/2027\",\"1/1/2026\",0.1,0.1)", L"100", SinglesBetween<5, 6>,
     EvalPriceAtMaturity},
    {13218, L"RECEIVED", L"settlement; maturity; investment; discount; basis", "ddnn[n]",
     L"Amount received at maturity.", L"RECEIVED(\"1/1/2026\",\"7/1/2026\",95,0.1)", L"100",
     SinglesBetween<4, 5>, OfDiscounted<Received, 0, C_NF_GENERAL>},
    {13244, L"YIELD", L"settlement; maturity; rate; price; redemption; frequency; basis",
     "ddnnnn[n]", L"Yield by a closed formula (not reachable by name).", SinglesBetween<6, 7>,
     EvalYield, kPlainFunc, nullptr, false},
};

} // namespace

FunctionFamily Securities() { return MakeFamily(7, kRows); }

} // namespace cells::internal
