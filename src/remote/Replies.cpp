// The answering side: OnTransport turns a request into a call of an OnRemote... and writes the
// reply over it.
#include "context/CCTransportInterface.h"
#include "platform/Exceptions.h"
#include "remote/internal/Wire.h"

#include <iterator>
#include <tuple>
#include <type_traits>

using cells::internal::OwnedValues;
using cells::internal::WireReader;
using cells::internal::WireWriter;

namespace {

using This = CCTransportInterface;

// A request whose reference has been read.
struct Incoming {
    This & transport;
    CCRemoteRef ref;
    CFile & file;
    WireReader & reader;

    // The reply starts at the begin of the file; what the request has after its end stays.
    template <typename... Records>
    void Reply(Records const &... records) const {
        file.SeekToBegin();
        WireWriter writer(transport.ctx(), file);
        writer.Put(records...);
        writer.Flush();
    }
};

// One function an operation: it reads the arguments, calls and replies.
using Answer = void (*)(Incoming & in);

// Operations whose arguments are plain records: handles, numbers, references, values, texts.
template <typename Argument>
using Record = std::remove_cv_t<std::remove_pointer_t<std::remove_reference_t<Argument>>>;
template <typename Argument>
Argument As(Record<Argument> & record) {
    if constexpr (std::is_pointer_v<Argument>)
        return &record;
    else
        return record;
}
template <auto Call>
struct Plain;
template <typename Result, typename... Arguments,
          Result (This::*Call)(CCRemoteRef const *, Arguments...)>
struct Plain<Call> {
    static void Run(Incoming & in) {
        std::tuple<Record<Arguments>...> records;
        std::apply([&](auto &... record) { in.reader.Take(record...); }, records);
        Result const result = std::apply(
            [&](auto &... record) {
                return (in.transport.*Call)(&in.ref, As<Arguments>(record)...);
            },
            records);
        in.Reply(result);
    }
};

template <auto Call>
void Records(Incoming & in) {
    ushort handle;
    in.reader.Take(handle);
    OwnedValues values;
    int const result = (in.transport.*Call)(&in.ref, handle, values.array);
    in.Reply(result, values.array);
}

void Value(Incoming & in) {
    int index;
    in.reader.Take(index);
    CCCellValue value;
    int const result = in.transport.OnRemoteGetValue(&in.ref, value, index);
    in.Reply(result, value);
}

void Sources(Incoming & in) {
    int flag;
    in.reader.Take(flag);
    CStringArray sources;
    int const result = in.transport.OnRemoteGetDataSources(&in.ref, sources, flag);
    in.Reply(result, sources);
}

void Items(Incoming & in) {
    CStringArray items;
    int const result = in.transport.OnRemoteGetItems(&in.ref, items);
    in.Reply(result, items);
}

void NumberedRecord(Incoming & in) {
    ushort handle;
    int number;
    in.reader.Take(handle, number);
    OwnedValues values;
    int const result = in.transport.OnRemoteGetRecord(&in.ref, handle, number, values.array);
    in.Reply(result, values.array);
}

void Size(Incoming & in) {
    ushort handle;
    in.reader.Take(handle);
    CSize size;
    int const result = in.transport.OnRemoteRefSize(&in.ref, handle, size);
    in.Reply(result, size);
}

void Next(Incoming & in) {
    ushort handle;
    in.reader.Take(handle);
    CCCellValue value;
    int const result = in.transport.OnRemoteNextValue(&in.ref, handle, value);
    in.Reply(result, value);
}

constexpr Answer kAnswers[] = {
    nullptr,
    &Plain<&This::OnRemoteIsValidRef>::Run,
    &Value,
    &Sources,
    &Items,
    &Plain<&This::OnRemoteOpenRef>::Run,
    &Records<&This::OnRemoteGetFirstRecord>,
    &Records<&This::OnRemoteGetNextRecord>,
    &Records<&This::OnRemoteGetPreviousRecord>,
    &Records<&This::OnRemoteGetLastRecord>,
    &NumberedRecord,
    &Size,
    &Next,
    &Plain<&This::OnRemoteCloseRef>::Run,
    &Plain<&This::OnRemoteRegisterDependent>::Run,
    &Plain<&This::OnRemoteUnRegisterDependent>::Run,
    &Plain<&This::OnRemoteInvalidateRef>::Run,
    &Plain<&This::OnRemoteMoveFormula>::Run,
    &Plain<&This::OnRemoteMoveDependent>::Run,
    &Plain<&This::OnRemoteIsSingleValue>::Run,
    &Plain<&This::OnRemoteInitRecalc>::Run,
    &Plain<&This::OnRemoteSetSourceValue>::Run,
    &Plain<&This::OnRemoteSetValueInCompound>::Run,
};
static_assert(std::size(kAnswers) == kRemoteSetValueInCompound + 1);

bool IsOperation(int operation) {
    return operation >= kRemoteIsValidRef && operation <= kRemoteSetValueInCompound;
}

} // namespace

int CCTransportInterface::OnTransport(CFile & file) {
    file.SeekToBegin();
    WireReader reader(ctx(), file);
    int operation;
    Incoming in{*this, {}, file, reader};
    reader.Take(operation, in.ref);
    if (!IsValidRemoteRef(&in.ref, operation) || !IsFunctionAvailable(operation)) return 0;
    if (!IsOperation(operation)) return 0;
    kAnswers[operation](in);
    return 1;
}

bool CCTransportInterface::ReadRequest(CFile & file, int & operation, CCRemoteRef & ref) {
    try {
        file.SeekToBegin();
        WireReader(nullptr, file).Take(operation, ref);
        file.SeekToBegin();
        return IsOperation(operation);
    } catch (CArchiveException const &) {
        return false;
    }
}

bool CCTransportInterface::IsReply(CFile & file, int operation) {
    try {
        file.SeekToBegin();
        WireReader reader(nullptr, file);
        int result;
        ushort handle;
        CCCellValue value;
        CStringArray texts;
        OwnedValues values;
        CSize size;
        switch (operation) {
        case kRemoteOpenRef:
            reader.Take(handle);
            break;
        case kRemoteGetValue:
        case kRemoteNextValue:
            reader.Take(result, value);
            break;
        case kRemoteGetDataSources:
        case kRemoteGetItems:
            reader.Take(result, texts);
            break;
        case kRemoteGetFirstRecord:
        case kRemoteGetNextRecord:
        case kRemoteGetPreviousRecord:
        case kRemoteGetLastRecord:
        case kRemoteGetRecord:
            reader.Take(result, values.array);
            break;
        case kRemoteRefSize:
            reader.Take(result, size);
            break;
        default:
            reader.Take(result);
        }
        file.SeekToBegin();
        return IsOperation(operation);
    } catch (CArchiveException const &) {
        return false;
    }
}
