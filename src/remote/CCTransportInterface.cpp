// What a document answers that overrides nothing.
#include "context/CCTransportInterface.h"

int CCTransportInterface::IsRemoteDocumentOpen(wchar_t const *) { return 0; }
int CCTransportInterface::IsValidRemoteRef(CCRemoteRef const *, int) { return 1; }
int CCTransportInterface::IsFunctionAvailable(int) { return 1; }
int CCTransportInterface::BeginSession() { return 0; }
void CCTransportInterface::EndSession(int) {}
void CCTransportInterface::EndSession() {}
int CCTransportInterface::DoTransport(CCRemoteRef const *, CFile &) { return 0; }
int CCTransportInterface::OnRemoteIsValidRef(CCRemoteRef const *) { return 0; }
int CCTransportInterface::OnRemoteGetValue(CCRemoteRef const *, CCCellValue &, int) { return 0; }
int CCTransportInterface::OnRemoteGetDataSources(CCRemoteRef const *, CStringArray &, int) {
    return 0;
}
int CCTransportInterface::OnRemoteGetItems(CCRemoteRef const *, CStringArray &) { return 0; }
ushort CCTransportInterface::OnRemoteOpenRef(CCRemoteRef const *) { return 0; }
int CCTransportInterface::OnRemoteGetFirstRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetNextRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetPreviousRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetLastRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetRecord(CCRemoteRef const *, ushort, int, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteRefSize(CCRemoteRef const *, ushort, CSize &) { return 0; }
int CCTransportInterface::OnRemoteNextValue(CCRemoteRef const *, ushort, CCCellValue &) {
    return 0;
}
int CCTransportInterface::OnRemoteCloseRef(CCRemoteRef const *, ushort) { return 0; }
int CCTransportInterface::OnRemoteRegisterDependent(CCRemoteRef const *, CCRemoteRef const *) {
    return 1;
}
int CCTransportInterface::OnRemoteUnRegisterDependent(CCRemoteRef const *, CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::OnRemoteInvalidateRef(CCRemoteRef const *, CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::OnRemoteMoveFormula(CCRemoteRef const *, CCRemoteRef const *,
                                              CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::OnRemoteMoveDependent(CCRemoteRef const *, CCRemoteRef const *,
                                                CCRemoteRef const *, int) {
    return 0;
}
int CCTransportInterface::OnRemoteIsSingleValue(CCRemoteRef const *) { return 0; }
int CCTransportInterface::OnRemoteInitRecalc(CCRemoteRef const *, int) { return 1; }
int CCTransportInterface::OnRemoteSetSourceValue(CCRemoteRef const *, CCCellValue const &) {
    return 0;
}
int CCTransportInterface::OnRemoteSetValueInCompound(CCRemoteRef const *, CString const &, int,
                                                     CCCellValue const &) {
    return 0;
}
