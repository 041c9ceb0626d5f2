// String numbers of the functions that the engine knows by itself.
#pragma once

namespace cells {

enum BuiltInId : unsigned int {
    kIdRand = 13069,
    kIdRandBetween = 13070,
    kIdNow = 13185,
    kIdToday = 13189,
    kIdFirstDataName = 13266, // DBFIELDCOUNT; the group ends with DBRELATIONNAME
    kIdLastDataName = 13273,
    kIdColumn = 13274,
    kIdRow = 13275,
    kIdHyperlink = 13288,
    kIdOffset = 13292,
    kIdCountry = 13296,
};

} // namespace cells
