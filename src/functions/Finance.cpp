// Finance.
#include "functions/Families.h"

namespace cells::internal {
namespace {

constexpr FunctionRow kRows[] = {
    {13195, L"ACCRINTM", L"issue; settlement; rate; par; basis", L"Interest accrued at maturity."},
    {13196, L"COMPOUND", L"rate; periods; present value", L"Present value with compound interest."},
    {13197, L"COUPDAYBS", L"settlement; maturity; frequency; basis",
     L"Days from the coupon period's beginning to settlement."},
    {13198, L"COUPDAYS", L"settlement; maturity; frequency; basis",
     L"Days of the coupon period that holds settlement."},
    {13199, L"COUPDAYSNC", L"settlement; maturity; frequency; basis",
     L"Days from settlement to the next coupon."},
    {13200, L"COUPNCD", L"settlement; maturity; frequency; basis",
     L"Next coupon date after settlement."},
    {13201, L"COUPNUM", L"settlement; maturity; frequency; basis",
     L"Number of coupons until maturity."},
    {13202, L"COUPPCD", L"settlement; maturity; frequency; basis",
     L"Coupon date at or before settlement."},
    {13203, L"DB", L"cost; salvage; life; period; months",
     L"Depreciation by the fixed declining balance."},
    {13204, L"DISC", L"settlement; maturity; price; redemption; basis",
     L"Discount rate of a security."},
    {13205, L"DOLLARDE", L"number; denominator",
     L"Price written with a fraction as a decimal number."},
    {13206, L"EFFECT", L"nominal rate; periods", L"Effective yearly rate."},
    {13207, L"FV", L"rate; periods; payment", L"Future value of equal payments."},
    {13208, L"INTRATE", L"settlement; maturity; investment; redemption; basis",
     L"Interest rate of a fully invested security."},
    {13209, L"IRR", L"values; guess, or guess; initial; value...", L"Internal rate of return."},
    {13210, L"MIRR", L"finance rate; reinvestment rate; value...", L"Modified rate of return."},
    {13211, L"NOMINAL", L"effective rate; periods", L"Nominal yearly rate."},
    {13212, L"NPV", L"rate; value...", L"Present value of a series of flows."},
    {13213, L"PMT", L"rate; periods; present value", L"Payment of a loan."},
    {13214, L"PRICE", L"settlement; maturity; rate; yield; redemption; frequency; basis",
     L"Price of a security with coupons."},
    {13215, L"PRICEDISC", L"settlement; maturity; discount; redemption; basis",
     L"Price of a discounted security."},
    {13216, L"PRICEMAT", L"settlement; maturity; issue; rate; yield; basis",
     L"Price of a security with interest at maturity."},
    {13217, L"PV", L"rate; periods; payment", L"Present value of equal payments."},
    {13218, L"RECEIVED", L"settlement; maturity; investment; discount; basis",
     L"Amount received at maturity."},
    {13219, L"SYD", L"cost; salvage; life; period",
     L"Sum-of-years product as this system defines it (not reachable by name).", nullptr, nullptr,
     kPlainFunc, nullptr, false},
    {13220, L"TBILLEQ", L"settlement; maturity; discount",
     L"Bill equivalent as this system defines it (not reachable by name).", nullptr, nullptr,
     kPlainFunc, nullptr, false},
    {13221, L"TBILLPRICE", L"settlement; maturity; discount", L"Price of a treasury bill."},
    {13222, L"TBILLYIELD", L"settlement; maturity; price", L"Yield of a treasury bill."},
    {13244, L"YIELD", L"settlement; maturity; rate; price; redemption; frequency; basis",
     L"Yield by a closed formula (not reachable by name).", nullptr, nullptr, kPlainFunc, nullptr,
     false},
    {13276, L"TAXBAND", L"income; thresholds; rates", L"Tax over bands of income."},
};

} // namespace

FunctionFamily Finance() { return MakeFamily(7, kRows); }

} // namespace cells::internal
