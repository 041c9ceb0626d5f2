// Invariants: whether the stored dependents are those that the formulas imply.
#pragma once

#include <string>
#include <vector>

class CCRef;
struct CCRefList;

namespace cells::host {

class SheetManager;

class Invariants {
public:
    // Takes in what is stored on a sheet and what its formulas imply. All sheets of a workbook have
    // to be read before the comparison.
    void Read(SheetManager & sheet);
    // A line for each difference; see Sheet::CheckInvariants.
    std::vector<std::string> Differences();

private:
    std::vector<std::string> m_Stored, m_Implied;
    std::vector<std::string> m_Moving, m_Inexact; // readers whose places cannot be computed
    std::vector<std::string> m_Lines;
};

} // namespace cells::host
