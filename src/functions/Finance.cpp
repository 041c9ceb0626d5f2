// Finance: loans, rates of return, depreciation, bills, taxes. Amounts follow no sign convention.
#include "format/DateSerial.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/ArgumentReader.h"
#include "functions/internal/Families.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace cells::internal {
namespace {

// A rate, with decimals unless it is whole.
void SetRate(CTX * ctx, CCCellValue & result, double rate) {
    SetStatusResult(ctx, Status::kDone, result, rate, C_NF_PERCENT);
}

// Loans

void EvalPv(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const r = read.Number();
    read.Require(r != 0, errDiv0);
    double const n = read.Number(), payment = read.Number();
    if (read.Ok()) SetNumber(result, (1 - std::pow(1 + r, -n)) * payment / r);
}

void EvalFv(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const r = read.Number();
    read.Require(r != 0, errDiv0);
    double const n = read.Number(), payment = read.Number();
    if (read.Ok()) SetNumber(result, (std::pow(1 + r, n) - 1) * payment / r);
}

void EvalPmt(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const r = read.Number(), n = read.Number();
    double const divisor = 1 - std::pow(1 + r, -n);
    read.Require(divisor != 0, errDiv0);
    double const present = read.Number();
    if (read.Ok()) SetNumber(result, present * r / divisor);
}

Outcome Compound(double r, double n, double present) { return present * std::pow(1 + r, n); }

Outcome Effect(double nominal, double periods) {
    double const p = std::floor(periods);
    if (!(nominal > 0 && p > 0)) return Status::kBadValue;
    return std::pow(1 + nominal / p, p) - 1;
}

void EvalNominal(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const effect = read.Positive(), p = read.Floored();
    read.Require(p > 0);
    if (read.Ok()) SetRate(ctx, result, (std::pow(1 + effect, 1 / p) - 1) * p);
}

// Rates of return

double DiscountedSum(std::vector<double> const & flows, double rate) {
    double sum = 0, factor = 1 + rate;
    for (double flow : flows) {
        sum += flow / factor;
        factor *= 1 + rate;
    }
    return sum;
}

// Brackets a change of sign, then halves. Running out of halvings is no failure.
Outcome FindRate(double initial, std::vector<double> const & flows, double guess) {
    constexpr int kMostPasses = 50;
    constexpr double kStretch = 1.6, kClose = 1e-05;
    if (guess == -1) return Status::kDivisionByZero;
    auto const f = [&](double rate) { return initial + DiscountedSum(flows, rate); };
    double low = guess - 0.1, high = guess + 0.1, atLow = f(low), atHigh = f(high);
    for (int pass = 0; pass < kMostPasses && !(atLow * atHigh < 0); ++pass) {
        if (std::fabs(atHigh) <= std::fabs(atLow)) {
            high += kStretch * (high - low);
            atHigh = f(high);
        } else {
            low += kStretch * (low - high);
            atLow = f(low);
        }
    }
    if (atLow * atHigh > 0) return Status::kBadValue;
    double base = atLow >= 0 ? high : low, width = atLow >= 0 ? low - high : high - low, mid = base;
    for (int pass = 0; pass < kMostPasses; ++pass) {
        width /= 2;
        mid = base + width;
        double const atMid = f(mid);
        if (atMid <= 0) base = mid;
        if (std::fabs(atMid) < kClose || std::fabs(width) < kClose) break;
    }
    return mid;
}

// Values and a guess: the first value begins, and the first number is no later flow. Or a guess,
// the first flow and further ones.
void EvalIrr(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    bool const isLong = FormulaListHasItems(args, 3);
    double guess = 0.1, initial = 0;
    std::vector<double> flows;
    ArgumentReader read(ctx, result, isLong ? args : args->next, current);
    guess = read.NumberOr(guess);
    if (isLong) initial = read.Number();
    if (!read.Ok()) return;
    CCFormulaList const only{args->formula, nullptr};
    bool first = true;
    Status const status = TryEachValue(ctx, isLong ? args->next->next : &only, current,
                                       [&](CCCellValue const & value) {
                                           if (first && !isLong && value.IsNumber())
                                               initial = value.GetNumber();
                                           first = false;
                                           if (value.IsNumber()) flows.push_back(value.GetNumber());
                                           return Status::kDone;
                                       });
    if (!isLong && !flows.empty()) flows.erase(flows.begin());
    Outcome const rate =
        status == Status::kDone ? FindRate(initial, flows, guess) : Outcome(status);
    SetStatusResult(ctx, rate.status, result, rate.number, C_NF_PERCENT);
    if (!isLong && result.IsNumber()) result.GetFormat().SetPrecision(0);
}

void EvalNpv(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const rate = read.Number();
    read.Require(rate != -1, errDiv0);
    if (!read.Ok()) return;
    std::vector<double> flows;
    Status const status = CollectDoubles(ctx, args->next, current, flows);
    SetStatusResult(ctx, status, result, DiscountedSum(flows, rate), C_NF_GENERAL);
}

// A flow is discounted by its rank among those of its sign and not by its period.
void EvalMirr(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const finance = read.Number(), reinvest = read.Number();
    if (!read.Ok()) return;
    std::vector<double> flows;
    Status status = CollectDoubles(ctx, args->next->next, current, flows);
    double gains = 0, losses = 0, gainCount = 0, lossCount = 0;
    for (double flow : flows) {
        if (flow < 0)
            losses += flow / std::pow(1 + finance, ++lossCount);
        else
            gains += flow / std::pow(1 + reinvest, ++gainCount);
    }
    if (status == Status::kDone && (1 + reinvest == 0 || 1 + finance == 0 || losses == 0))
        status = Status::kBadValue;
    double const growth = -std::pow(1 + reinvest, gainCount) * gains / ((1 + finance) * losses);
    SetStatusResult(ctx, status, result, std::pow(growth, 1 / (gainCount + lossCount - 1)) - 1,
                    C_NF_PERCENT);
}

// Depreciation

// The product stands as it is, without a division by the sum of the years: saved sheets keep their
// results by it.
void EvalSyd(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const cost = read.Positive(), salvage = read.NotNegative(), life = read.Floored(),
                 period = read.Floored();
    read.Require(life != 0 && period != 0 && period <= life + 1);
    if (read.Ok()) SetNumber(result, (cost - salvage) * period * (life + 1) * life * 0.5);
}

double DecliningBalance(double cost, double salvage, double life, double period, double month) {
    double const rate = std::floor((1 - std::pow(salvage / cost, 1 / life)) / 0.001 + 0.5) * 0.001;
    double total = 0, dep = 0;
    for (double year = 1; year <= period; ++year) {
        dep = (cost - total) * rate;
        if (year == 1) dep = dep * month / 12;
        if (year == life + 1) dep = dep * (12 - month) / 12;
        bool const settled =
            year > 1 && year < life && (total + dep == total || !std::isfinite(dep));
        total += dep;
        if (!settled) continue;
        // Every further year is like this one, but for the one after the last.
        if (period == life + 1) dep = dep * (12 - month) / 12;
        break;
    }
    return dep;
}

void EvalDb(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const cost = read.Positive(), salvage = read.NotNegative(), life = read.Floored();
    read.Require(life != 0);
    double const period = read.Floored();
    read.Require(period >= 1 && period <= life + 1);
    double const month = std::floor(read.NumberOr(12));
    read.Require(month >= 1 && month <= 12);
    if (read.Ok()) SetNumber(result, DecliningBalance(cost, salvage, life, period, month));
}

// Treasury bills run for a year at most.

struct Bill {
    double days, number; // the number is a discount or a price
    bool ok;
};

Bill ReadBill(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const settlement = read.Date(), maturity = read.Date();
    double yearOn = 0;
    if (read.Ok())
        read.Require(settlement < maturity && AddMonths(std::floor(settlement), 12, yearOn) &&
                     maturity <= yearOn);
    double const number = read.Positive();
    return {read.Ok() ? DayCount(0, settlement, maturity) : 0, number, read.Ok()};
}

void EvalBillPrice(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    Bill const bill = ReadBill(ctx, result, args, current);
    if (bill.ok) SetNumber(result, (1 - bill.days * bill.number / 360) * 100);
}

void EvalBillYield(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    Bill const bill = ReadBill(ctx, result, args, current);
    if (bill.ok) SetRate(ctx, result, ((100 - bill.number) / bill.number * 360) / bill.days);
}

// A difference and no quotient: saved sheets keep their results by it.
void EvalBillEquivalent(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                        CCRef const * current) {
    Bill const bill = ReadBill(ctx, result, args, current);
    if (bill.ok) SetRate(ctx, result, 365 * bill.number / 360 - bill.days * bill.number);
}

// Prices in fractions, and taxes

double DigitsOf(double whole) {
    double digits = 0;
    for (; whole >= 1 && digits < 8; whole /= 10) ++digits;
    return digits;
}

Outcome DollarDe(double x, double denominator) {
    constexpr double kNoFraction = 2.220446049250313e-16, kWhole = 1e-08;
    constexpr int kMostDigits = 8;
    denominator = std::floor(denominator);
    if (!(denominator >= 0)) return Status::kBadValue;
    if (denominator == 0) return Status::kDivisionByZero;
    double const magnitude = std::fabs(x), whole = std::floor(magnitude);
    double block = magnitude - whole;
    if (!(block > kNoFraction)) return x;
    int count = 0;
    while (count < kMostDigits && std::fabs(block - std::round(block)) > kWhole) {
        block *= 10;
        ++count;
    }
    double const value =
        whole + block * std::pow(10.0, DigitsOf(denominator) - count) / denominator;
    return x < 0 ? -value : value;
}

void EvalTaxBand(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    ArgumentReader read(ctx, result, args, current);
    double const income = read.Number();
    if (!read.Ok()) return;
    std::vector<double> thresholds, rates;
    CCFormulaList const * const bands = args->next;
    Status status =
        TryEachPair(ctx, bands->formula, bands->next->formula, current, Status::kBadReference,
                    [&](CCCellValue const & threshold, CCCellValue const & rate) {
                        if (!threshold.IsNumber() || !rate.IsNumber()) return Status::kBadValue;
                        thresholds.push_back(threshold.GetNumber());
                        rates.push_back(rate.GetNumber());
                        return Status::kDone;
                    });
    if (status == Status::kDone && thresholds.size() < 2) status = Status::kBadReference;
    double tax = 0;
    for (std::size_t i = 0; i < thresholds.size(); ++i) {
        double const low = thresholds[i],
                     high = i + 1 < thresholds.size() ? thresholds[i + 1] : income;
        tax += std::max(0.0, std::min(high - low, income - low)) * rates[i];
    }
    SetStatusResult(ctx, status, result, tax, C_NF_GENERAL);
}

int IrrShape(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    if (!args) return 0;
    if (FormulaListHasItems(args, 3)) return AreSingle(ctx, args, current, 2);
    return !args->next || AreSingle(ctx, args->next, current, 1);
}

int TaxBandShape(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return FormulaListHasExactly(args, 3) && AreSingle(ctx, args, current, 1) &&
           !AreSingle(ctx, args->next, current, 1) && !AreSingle(ctx, args->next->next, current, 1);
}

constexpr FunctionRow kRows[] = {
    {13196, L"COMPOUND", L"rate; periods; present value", "nnn",
     L"Present value with compound interest.", L"COMPOUND(0.5,2,100)", L"225", Singles<3>,
     OfNumbers<Compound>},
    {13203, L"DB", L"cost; salvage; life; period; months", "nnnn[n]",
     L"Depreciation by the fixed declining balance.", L"DB(1000,100,5,1)", L"369",
     SinglesBetween<4, 5>, EvalDb},
    {13205, L"DOLLARDE", L"number; denominator", "nn",
     L"Price written with a fraction as a decimal number.", L"DOLLARDE(1.02,16)", L"1.125",
     Singles<2>, OfNumbers<DollarDe>},
    {13206, L"EFFECT", L"nominal rate; periods", "nn", L"Effective yearly rate.", L"EFFECT(0.5,2)",
     L"0.5625", Singles<2>, OfNumbers<Effect>},
    {13207, L"FV", L"rate; periods; payment", "nnn", L"Future value of equal payments.",
     L"FV(0.5,2,100)", L"250", Singles<3>, EvalFv},
    {13209, L"IRR", L"values; guess, or guess; initial; value...", "r[n]",
     L"Internal rate of return.", L"IRR({-100,110})", L"10%", IrrShape, EvalIrr},
    {13210, L"MIRR", L"finance rate; reinvestment rate; value...", "nnr",
     L"Modified rate of return.", L"MIRR(0.1,0.1,-100,60,60)", L"12.25%", FirstTwoSingle<3>,
     EvalMirr},
    {13211, L"NOMINAL", L"effective rate; periods", "nn", L"Nominal yearly rate.",
     L"NOMINAL(0.5625,2)", L"50.00%", Singles<2>, EvalNominal},
    {13212, L"NPV", L"rate; value...", "nr", L"Present value of a series of flows.",
     L"NPV(1,100,100)", L"75", FirstSingle<2>, EvalNpv},
    {13213, L"PMT", L"rate; periods; present value", "nnn", L"Payment of a loan.", L"PMT(1,1,100)",
     L"200", Singles<3>, EvalPmt},
    {13217, L"PV", L"rate; periods; payment", "nnn", L"Present value of equal payments.",
     L"PV(1,1,100)", L"50", Singles<3>, EvalPv},
    {13219, L"SYD", L"cost; salvage; life; period", "nnnn",
     L"Sum-of-years product as this system defines it (not reachable by name).", Singles<4>,
     EvalSyd, kPlainFunc, nullptr, false},
    {13220, L"TBILLEQ", L"settlement; maturity; discount", "ddn",
     L"Bill equivalent as this system defines it (not reachable by name).", Singles<3>,
     EvalBillEquivalent, kPlainFunc, nullptr, false},
    {13221, L"TBILLPRICE", L"settlement; maturity; discount", "ddn", L"Price of a treasury bill.",
     L"TBILLPRICE(\"1/1/2026\",\"7/1/2026\",0.1)", L"95", Singles<3>, EvalBillPrice},
    {13222, L"TBILLYIELD", L"settlement; maturity; price", "ddn", L"Yield of a treasury bill.",
     L"TBILLYIELD(\"1/1/2026\",\"7/1/2026\",80)", L"50.00%", Singles<3>, EvalBillYield},
    {13276, L"TAXBAND", L"income; thresholds; rates", "nrr", L"Tax over bands of income.",
     L"TAXBAND(150,{0,100},{0.1,0.2})", L"20", TaxBandShape, EvalTaxBand},
};

} // namespace

FunctionFamily Finance() { return MakeFamily(7, kRows); }

} // namespace cells::internal
