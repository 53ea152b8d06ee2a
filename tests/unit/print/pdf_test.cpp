// Print jobs in PDF files: the form of the file, and what a reader of such files gets out of it.

#include <cstdio>
#include <filesystem>

#include "platform/common/pdf_job.h"
#include "platform/files.h"
#include "platform/posix/file_faults.h"
#include "platform/text.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

class PdfTest : public ::testing::Test {
protected:
    void SetUp() override {
        reset_file_faults();
        folder = make_test_folder();
        path = folder + "/out.pdf";
    }
    void TearDown() override {
        reset_file_faults();
        std::filesystem::remove_all(folder);
    }

    static void put_line(int y, const std::string& text) {
        pdf_text(0, y, text.data(), static_cast<int>(text.size()));
    }

    static void select_font(const char* face, int points) {
        int height = 0;
        int leading = 0;
        ASSERT_TRUE(pdf_select_font(face, points * pdf_dots_per_inch() / 72, &height, &leading));
        EXPECT_GT(height, points * pdf_dots_per_inch() / 72);
    }

    // Two pages of lines that need care.
    int write_job() const {
        if (!pdf_begin("A (title) \xC3\xA4", path.c_str()))
            return 0;
        pdf_start_page();
        select_font("Times New Roman", 12);
        put_line(200, "(ROUND) BACK\\SLASH");
        select_font("Courier", 8);
        put_line(400, "UMLAUT \xE4 EURO \x80 TAB\tEND");
        pdf_end_page();
        pdf_start_page();
        select_font("Courier", 8);
        put_line(200, "SECOND PAGE");
        pdf_end_page();
        return pdf_end();
    }

    // What a program prints, or "" when it is not there.
    static std::string output_of(const std::string& command) {
        std::string text;
        FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
        for (int c = 0; pipe != nullptr && (c = std::getc(pipe)) != EOF;)
            text += static_cast<char>(c);
        if (pipe != nullptr)
            pclose(pipe);
        return text;
    }

    std::string folder;
    std::string path;
};

// Each place in the table is that of the object of that number.
TEST_F(PdfTest, TheTableOfObjectsIsRight) {
    ASSERT_TRUE(write_job());
    const std::string bytes = read_bytes(path);
    EXPECT_EQ(bytes.substr(0, 9), "%PDF-1.4\n");
    EXPECT_EQ(bytes.substr(bytes.size() - 6), "%%EOF\n");
    const size_t start = bytes.rfind("startxref\n") + 10;
    const size_t table = std::stoul(bytes.substr(start));
    ASSERT_EQ(bytes.substr(table, 7), "xref\n0 ");
    const size_t count = std::stoul(bytes.substr(table + 7));
    const size_t first = bytes.find('\n', table + 7) + 1;
    EXPECT_EQ(count, 10U);
    for (size_t number = 1; number < count; number++) {
        const size_t offset = std::stoul(bytes.substr(first + 20 * number, 10));
        const std::string head = std::to_string(number) + " 0 obj\n";
        EXPECT_EQ(bytes.substr(offset, head.size()), head);
    }
    for (size_t at = 0; (at = bytes.find("/Length ", at)) != std::string::npos; at++) {
        const size_t length = std::stoul(bytes.substr(at + 8));
        const size_t content = bytes.find("stream\n", at) + 7;
        EXPECT_EQ(bytes.substr(content + length, 10), "\nendstream");
    }
}

TEST_F(PdfTest, AReaderFindsTextOrderAndPages) {
    if (output_of("command -v pdftotext").empty())
        GTEST_SKIP() << "pdftotext is not installed";
    ASSERT_TRUE(write_job());
    EXPECT_EQ(output_of("pdftotext -layout -enc UTF-8 " + path + " -"),
              "(ROUND) BACK\\SLASH\nUMLAUT \xC3\xA4 EURO \xE2\x82\xAC TAB END\n\fSECOND PAGE\n\f");
    const std::string facts = output_of("pdfinfo -enc UTF-8 " + path);
    EXPECT_NE(facts.find("A (title) \xC3\xA4"), std::string::npos);
    EXPECT_NE(facts.find("Pages:           2"), std::string::npos);
}

TEST_F(PdfTest, AFailedJobLeavesTheOldFile) {
    write_bytes(path, "%PDF-old");
    for (const char* fault : {"fail write 1 ENOSPC", "fail create 1 EACCES", "fail rename 1 EIO",
                              "fail close 1 EIO", "fail flush 1 EIO"}) {
        SCOPED_TRACE(fault);
        reset_file_faults();
        ASSERT_TRUE(arm_file_faults_from_text(fault));
        EXPECT_EQ(write_job(), 0);
        EXPECT_NE(std::string(pdf_problem_text()), "");
        EXPECT_EQ(read_bytes(path), "%PDF-old");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
    }
    reset_file_faults();
    ASSERT_TRUE(write_job());
    EXPECT_EQ(read_bytes(path).substr(0, 4), "%PDF");
    std::filesystem::create_directory(folder + "/folder");
    EXPECT_EQ(pdf_begin("title", (folder + "/folder").c_str()), 0);
    EXPECT_EQ(pdf_begin("title", (folder + "/missing/out.pdf").c_str()), 0);
}

// A wrong name, or the program's own, must not cost an NC program.
TEST_F(PdfTest, OnlyAPdfFileIsReplaced) {
    for (const char* bytes : {"%\nO1042\n", "%PD", "M30"}) {
        write_bytes(path, bytes);
        EXPECT_EQ(pdf_begin("title", path.c_str()), 0);
        EXPECT_NE(std::string(pdf_problem_text()).find("no PDF file"), std::string::npos);
        EXPECT_EQ(read_bytes(path), bytes);
    }
    write_bytes(path, "");
    std::filesystem::permissions(path,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    ASSERT_TRUE(write_job());
    EXPECT_EQ(std::filesystem::status(path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    ASSERT_TRUE(pdf_begin("title", path.c_str()));
    pdf_start_page();
    pdf_end_page();
    pdf_abandon();
    EXPECT_NE(read_bytes(path).find("SECOND PAGE"), std::string::npos);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

// The link stays, and the file that it means is replaced.
TEST_F(PdfTest, ALinkIsFollowed) {
    write_bytes(folder + "/target.pdf", "");
    std::filesystem::create_symlink("target.pdf", path);
    ASSERT_TRUE(write_job());
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(read_bytes(folder + "/target.pdf").substr(0, 4), "%PDF");
}

}  // namespace
}  // namespace hexlane
