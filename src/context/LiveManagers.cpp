#include "context/LiveManagers.h"

#include <vector>

namespace cells::internal {
namespace {

std::vector<CCCellManager *> & Table() {
    static auto * const table = new std::vector<CCCellManager *>{nullptr};
    return *table;
}

} // namespace

ManagerSerial EnterManager(CCCellManager * manager) {
    Table().push_back(manager);
    return ManagerSerial(Table().size() - 1);
}

void LeaveManager(ManagerSerial serial) { Table()[serial] = nullptr; }

CCCellManager * LiveManager(ManagerSerial serial) {
    return serial < Table().size() ? Table()[serial] : nullptr;
}

} // namespace cells::internal
