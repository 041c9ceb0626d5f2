#include "platform/CArchive.h"

#include "platform/Exceptions.h"
#include "support/Bytes.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

using namespace cells::test;

namespace {

CArchiveException::Cause CauseOf(std::function<void()> const & work) {
    try {
        work();
    } catch (CArchiveException const & failure) {
        return failure.m_cause;
    }
    return CArchiveException::none;
}

} // namespace

TEST(Archive, NumbersAreLittleEndianWithoutPadding) {
    Bytes const expected = {0x12, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
    EXPECT_EQ(Written([](CArchive & ar) {
                  ar << uchar(0x12) << std::uint16_t(0x1234) << std::uint32_t(0x12345678) << 1.5;
              }),
              expected);
}

TEST(Archive, TextIsTaggedWithItsUnits) {
    EXPECT_EQ(Written([](CArchive & ar) { ar << CString(L"a\U0001F600"); }),
              (Bytes{0xFF, 0xFE, 0xFF, 3, 'a', 0, 0x3D, 0xD8, 0x00, 0xDE}));
    EXPECT_EQ(Written([](CArchive & ar) { ar << CString(); }), (Bytes{0xFF, 0xFE, 0xFF, 0}));
}

struct LengthForm {
    int length;
    Bytes head;
};

TEST(Archive, TextLengthTakesTheShortestForm) {
    LengthForm const forms[] = {{254, {0xFF, 0xFE, 0xFF, 254}},
                                {255, {0xFF, 0xFE, 0xFF, 0xFF, 255, 0}},
                                {65533, {0xFF, 0xFE, 0xFF, 0xFF, 0xFD, 0xFF}},
                                {65534, {0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0, 0}}};
    for (LengthForm const & form : forms) {
        CString const text(L'x', form.length);
        Bytes const bytes = Written([&](CArchive & ar) { ar << text; });
        ASSERT_EQ(bytes.size(), form.head.size() + std::size_t(form.length) * 2);
        EXPECT_TRUE(std::equal(form.head.begin(), form.head.end(), bytes.begin())) << form.length;
        CString back;
        Reading(bytes, [&](CArchive & ar) { ar >> back; });
        EXPECT_EQ(back, text);
    }
}

TEST(Archive, TextWithoutTagIsNarrow) {
    CString text;
    Reading({3, 'a', 0x80, 0xE9}, [&](CArchive & ar) { ar >> text; });
    EXPECT_EQ(text, L"a\x20AC\xE9");
}

TEST(Archive, ZeroStringsTellNullFromEmpty) {
    EXPECT_EQ(Written([](CArchive & ar) { WriteString(ar, nullptr); }), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Written([](CArchive & ar) { WriteString(ar, L""); }), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(Written([](CArchive & ar) { WriteString(ar, L"A"); }), (Bytes{2, 0, 0, 0, 'A', 0}));
}

TEST(Archive, ZeroStringIsCutAt4096Units) {
    Bytes const bytes = Written([](CArchive & ar) { WriteString(ar, CString(L'x', 5000)); });
    ASSERT_EQ(bytes.size(), 4u + 4096 * 2);
    EXPECT_EQ(bytes[0] | bytes[1] << 8, 4097);
}

TEST(Archive, HugeCountsOnShortStreamsTakeWhatIsThere) {
    Reading({0xFF, 0xFF, 0xFF, 0xFF, 'A', 0}, [](CArchive & ar) {
        wchar_t * text = ReadString(ar);
        EXPECT_STREQ(text, L"A");
        std::free(text);
    });
    EXPECT_EQ(CauseOf([] {
                  Reading({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0xFF, 0xFF, 0xFF, 'a', 0},
                          [](CArchive & ar) {
                              CString text;
                              ar >> text;
                          });
              }),
              CArchiveException::endOfFile);
}

TEST(Archive, FailuresHaveTheirCause) {
    EXPECT_EQ(CauseOf([] {
                  Reading({1}, [](CArchive & ar) {
                      std::uint32_t number;
                      ar >> number;
                  });
              }),
              CArchiveException::endOfFile);
    EXPECT_EQ(CauseOf([] { Reading({1}, [](CArchive & ar) { ar << uchar(1); }); }),
              CArchiveException::readOnly);
    EXPECT_EQ(CauseOf([] {
                  Written([](CArchive & ar) {
                      uchar byte;
                      ar >> byte;
                  });
              }),
              CArchiveException::writeOnly);
}

TEST(Archive, CountsAreShortBelow65535) {
    EXPECT_EQ(Written([](CArchive & ar) { ar.WriteCount(65534); }), (Bytes{0xFE, 0xFF}));
    EXPECT_EQ(Written([](CArchive & ar) { ar.WriteCount(65535); }),
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0, 0}));
}

TEST(Archive, FlushOfALoadingArchiveMovesItsFileBack) {
    Bytes const bytes = {1, 2, 3, 4};
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    uchar first;
    ar >> first;
    ar.Flush();
    EXPECT_EQ(file.GetPosition(), 1u);
}

// Files of the machine

namespace {

CFileException::Cause FileCauseOf(std::function<void()> const & work) {
    try {
        work();
    } catch (CFileException const & failure) {
        return failure.m_cause;
    }
    return CFileException::none;
}

class FileOnDisk : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(folder); }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::filesystem::path const folder =
        std::filesystem::path(testing::TempDir()) / "cvcells-file-on-disk";
    std::string const path = (folder / "gr\u00F6\u00DFe.bin").string();
};

} // namespace

TEST_F(FileOnDisk, HoldsWhatAnArchiveWrote) {
    {
        CFile file(path.c_str(), CFile::modeWrite);
        CArchive ar(&file, CArchive::store);
        for (std::uint32_t i = 0; i < 5000; ++i) ar << i; // more than a buffer
        ar.Flush();
        EXPECT_EQ(file.GetPosition(), 20000u);
    }
    CFile file(path.c_str(), CFile::modeRead);
    EXPECT_EQ(file.GetLength(), 20000u);
    EXPECT_EQ(file.GetPosition(), 0u);
    CArchive ar(&file, CArchive::load);
    for (std::uint32_t i = 0; i < 5000; ++i) {
        std::uint32_t number;
        ar >> number;
        ASSERT_EQ(number, i);
    }
    EXPECT_EQ(CauseOf([&] {
                  uchar byte;
                  ar >> byte;
              }),
              CArchiveException::endOfFile);
}

TEST_F(FileOnDisk, ALoadingArchiveGivesBackWhatItHasNotHandedOut) {
    {
        CFile file(path.c_str(), CFile::modeWrite);
        file.Write("abcdef", 6);
        file.Flush();
    }
    CFile file(path.c_str(), CFile::modeReadWrite);
    {
        CArchive ar(&file, CArchive::load);
        uchar byte;
        ar >> byte >> byte;
        EXPECT_EQ(byte, 'b');
    }
    EXPECT_EQ(file.GetPosition(), 2u);
    EXPECT_EQ(file.Seek(-1, CFile::end), 5u);
    char last = 0;
    EXPECT_EQ(file.Read(&last, 1), 1u);
    EXPECT_EQ(last, 'f');
    EXPECT_EQ(file.Read(&last, 1), 0u);
    EXPECT_EQ(file.Seek(1, CFile::begin), 1u);
    EXPECT_EQ(file.Seek(2, CFile::current), 3u);
    file.SeekToBegin();
    EXPECT_EQ(file.GetPosition(), 0u);
}

TEST_F(FileOnDisk, FailuresHaveTheirCauses) {
    EXPECT_EQ(FileCauseOf([&] { CFile(path.c_str(), CFile::modeRead); }),
              CFileException::fileNotFound);
    EXPECT_EQ(FileCauseOf([&] { CFile(folder.string().c_str(), CFile::modeWrite); }),
              CFileException::accessDenied);
    CFile(path.c_str(), CFile::modeWrite).Write("x", 1);
    CFile reading(path.c_str(), CFile::modeRead);
    EXPECT_EQ(FileCauseOf([&] {
                  reading.Write("y", 1);
                  reading.Flush();
              }),
              CFileException::generic);
    EXPECT_EQ(FileCauseOf([&] { reading.Seek(-5, CFile::begin); }), CFileException::badSeek);
    EXPECT_STREQ(CFileException(CFileException::fileNotFound).what(), "the file does not exist");
}

TEST(File, WithoutAPathIsNoFile) {
    CFile file;
    char byte;
    EXPECT_EQ(file.Read(&byte, 1), 0u);
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(FileCauseOf([&] { file.Write("x", 1); }), CFileException::generic);
    EXPECT_EQ(FileCauseOf([&] { file.Seek(0, CFile::begin); }), CFileException::badSeek);
    file.Flush();
}
