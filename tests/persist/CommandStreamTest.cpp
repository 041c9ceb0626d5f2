// The framing of commands.
#include "persist/CCRWBase.h"

#include "platform/CArchive.h"
#include "platform/Exceptions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Stream : CCRWBase {
    using CCRWBase::CCRWBase;
    void OnCommand(unsigned short code, void * data, unsigned short length) override {
        seen.push_back(std::to_string(code) + ":" +
                       std::string(static_cast<char const *>(data), length));
        if (code == stopAt) Stop();
    }
    std::vector<std::string> seen;
    int stopAt = 99;
};

std::vector<std::string> ReadAll(std::vector<uchar> const & bytes, int stopAt = 99) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    Stream stream(kFileVersionWide);
    stream.stopAt = stopAt;
    stream.Begin(ar);
    try {
        stream.Read();
    } catch (CArchiveException const & end) {
        EXPECT_EQ(end.m_cause, CArchiveException::endOfFile);
        EXPECT_TRUE(stream.IsRunning());
        stream.End();
        EXPECT_FALSE(stream.IsRunning());
    }
    return stream.seen;
}

} // namespace

TEST(CommandStream, WritesCodeLengthAndPayload) {
    CMemFile file(16);
    CArchive ar(&file, CArchive::store);
    Stream stream(kFileVersionWide);
    stream.Begin(ar);
    stream.WriteCommand(0x1234, "abc", 3);
    stream.WriteCommand(2, nullptr, 0);
    stream.End();
    ar.Flush();
    EXPECT_EQ(file.Bytes(), (std::vector<uchar>{0x34, 0x12, 3, 0, 'a', 'b', 'c', 2, 0, 0, 0}));
}

TEST(CommandStream, HandsOutEachCommandUntilTheStreamEnds) {
    EXPECT_EQ(ReadAll({1, 0, 2, 0, 'a', 'b', 21, 0, 0, 0, 3, 0, 1, 0, 'c'}),
              (std::vector<std::string>{"1:ab", "21:", "3:c"}));
}

TEST(CommandStream, AStoppedReaderFinishesTheCommandAndEnds) {
    EXPECT_EQ(ReadAll({1, 0, 1, 0, 'a', 2, 0, 1, 0, 'b'}, 1), std::vector<std::string>{"1:a"});
}

TEST(CommandStream, TheBufferGrowsToTheLargestPayloadAndNeverShrinks) {
    std::vector<uchar> bytes{1, 0, 100, 0};
    bytes.resize(104, 'x');
    bytes.insert(bytes.end(), {2, 0, 10, 0});
    bytes.resize(118, 'y');
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    Stream stream(kFileVersionWide);
    stream.Begin(ar);
    unsigned short code, length;
    void * data;
    stream.ReadCommand(code, data, length);
    EXPECT_EQ(stream.GetBufferSize(), 100);
    stream.ReadCommand(code, data, length);
    EXPECT_EQ(length, 10);
    EXPECT_EQ(stream.GetBufferSize(), 100);
    EXPECT_EQ(std::string(static_cast<char *>(data), 10), std::string(10, 'y'));
}

TEST(CommandStream, TheVersionSelectsTheWidth) {
    EXPECT_TRUE(Stream(kFileVersionNarrow).WriteInAnsi());
    Stream wide(FileVersion(7));
    EXPECT_FALSE(wide.WriteInAnsi());
    EXPECT_EQ(wide.version(), 7);
    wide.SetAnsi(true);
    EXPECT_TRUE(wide.WriteInAnsi());
}

TEST(CommandStream, TheWrongDirectionIsAnArchiveFailure) {
    CMemFile file(16);
    Stream stream(kFileVersionWide);
    unsigned short code, length;
    void * data;
    EXPECT_THROW(stream.WriteCommand(1, nullptr, 0), CArchiveException); // no archive at all
    CArchive storing(&file, CArchive::store);
    stream.Begin(storing);
    EXPECT_THROW(stream.ReadCommand(code, data, length), CArchiveException);
    CArchive loading(&file, CArchive::load);
    stream.Begin(loading);
    EXPECT_THROW(stream.WriteCommand(1, "a", 1), CArchiveException);
}
