// What a document answers that has no way to others.
#include "context/CCTransportInterface.h"
#include "formula/CCRemoteRef.h"
#include "platform/CFile.h"
#include "values/CCCellValue.h"

#include <gtest/gtest.h>

namespace {

class Alone final : public CCTransportInterface {
public:
    cells::CTX * ctx() override { return nullptr; }
    cells::CTX * ctx() const override { return nullptr; }
};

CCRemoteRef const kThere(L"other", L"A1");

} // namespace

TEST(Transport, WithoutOneNothingIsReachable) {
    Alone alone;
    CMemFile file;
    EXPECT_EQ(alone.DoTransport(&kThere, file), 0);
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_EQ(alone.IsRemoteDocumentOpen(L"other"), 0);
    EXPECT_EQ(alone.BeginSession(), 0);
}

TEST(Transport, WithoutOneReadsFailAndLeaveTheValue) {
    Alone alone;
    CCCellValue value;
    CPtrArray values;
    CStringArray names;
    CSize size{3, 4};
    value.Set(7.0);
    EXPECT_EQ(alone.DoRemoteIsValidRef(&kThere), 0);
    EXPECT_EQ(alone.DoRemoteGetValue(&kThere, value, 0), 0);
    EXPECT_EQ(alone.DoRemoteGetDataSources(&kThere, names, 0), 0);
    EXPECT_EQ(alone.DoRemoteGetItems(&kThere, names), 0);
    EXPECT_EQ(alone.DoRemoteOpenRef(&kThere), 0);
    EXPECT_EQ(alone.DoRemoteGetFirstRecord(&kThere, 1, values), 0);
    EXPECT_EQ(alone.DoRemoteGetNextRecord(&kThere, 1, values), 0);
    EXPECT_EQ(alone.DoRemoteGetPreviousRecord(&kThere, 1, values), 0);
    EXPECT_EQ(alone.DoRemoteGetLastRecord(&kThere, 1, values), 0);
    EXPECT_EQ(alone.DoRemoteGetRecord(&kThere, 1, 2, values), 0);
    EXPECT_EQ(alone.DoRemoteRefSize(&kThere, 1, size), 0);
    EXPECT_EQ(alone.DoRemoteNextValue(&kThere, 1, value), 0);
    EXPECT_EQ(alone.DoRemoteCloseRef(&kThere, 1), 0);
    EXPECT_EQ(alone.DoRemoteIsSingleValue(&kThere), 0);
    EXPECT_EQ(alone.DoRemoteSetSourceValue(&kThere, value), 0);
    EXPECT_EQ(alone.DoRemoteSetValueInCompound(&kThere, L"name", 1, value), 0);
    EXPECT_EQ(value.GetNumber(), 7.0);
    EXPECT_EQ(size.cx, 3);
    EXPECT_EQ(values.GetSize(), 0);
    EXPECT_EQ(names.GetSize(), 0);
}

TEST(Transport, WithoutOneRegistrationAndRecalculationProceed) {
    Alone alone;
    EXPECT_EQ(alone.DoRemoteRegisterDependent(&kThere, &kThere), 1);
    EXPECT_EQ(alone.DoRemoteInitRecalc(&kThere, 0), 1);
    EXPECT_EQ(alone.OnRemoteRegisterDependent(&kThere, &kThere), 1);
    EXPECT_EQ(alone.OnRemoteInitRecalc(&kThere, 0), 1);
    EXPECT_EQ(alone.IsValidRemoteRef(&kThere, 0), 1);
    EXPECT_EQ(alone.IsFunctionAvailable(0), 1);
}

TEST(Transport, WithoutOneOtherRequestsFail) {
    Alone alone;
    CCCellValue value;
    EXPECT_EQ(alone.DoRemoteUnRegisterDependent(&kThere, &kThere), 0);
    EXPECT_EQ(alone.DoRemoteInvalidateRef(&kThere, &kThere), 0);
    EXPECT_EQ(alone.DoRemoteMoveFormula(&kThere, &kThere, &kThere), 0);
    EXPECT_EQ(alone.DoRemoteMoveDependent(&kThere, &kThere, &kThere, 0), 0);
    EXPECT_EQ(alone.OnRemoteGetValue(&kThere, value, 0), 0);
    EXPECT_EQ(alone.OnRemoteOpenRef(&kThere), 0);
    EXPECT_EQ(alone.OnRemoteInvalidateRef(&kThere, &kThere), 0);
    EXPECT_EQ(alone.OnRemoteMoveDependent(&kThere, &kThere, &kThere, 1), 0);
}

TEST(Transport, MessagesAreOnAtFirst) {
    Alone alone;
    EXPECT_EQ(alone.GetNotifyEnable(), 1);
    alone.SetNotifyEnable(0);
    EXPECT_EQ(alone.GetNotifyEnable(), 0);
}
