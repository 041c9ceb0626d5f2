// String numbers of the functions that the engine knows by itself.
#pragma once

namespace cells {

enum BuiltInId : unsigned int {
    kIdDivide = 13051,
    kIdMinus = 13063,
    kIdPlus = 13067,
    kIdPower = 13068,
    kIdRand = 13069,
    kIdRandBetween = 13070,
    kIdTimes = 13087,
    kIdNow = 13185,
    kIdToday = 13189,
    kIdAnd = 13223,
    kIdNot = 13225,
    kIdOr = 13226,
    kIdFirstDataName = 13266, // DBFIELDCOUNT; the group ends with DBRELATIONNAME
    kIdLastDataName = 13273,
    kIdColumn = 13274,
    kIdRow = 13275,
    kIdHyperlink = 13288,
    kIdOffset = 13292,
    kIdCountry = 13296,
};

} // namespace cells
