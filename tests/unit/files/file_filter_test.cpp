// What the file dialogs remember: folder and type of the file named or chosen last.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "files/file_filter.h"

namespace hexlane {
namespace {

class FileFilterTest : public ::testing::Test {
protected:
    // A path without folder and dot empties both memories.
    void SetUp() override {
        take(FilterMode::NAMED, "plain");
        take(FilterMode::CHOSEN, "plain");
    }

    int take(FilterMode mode, const char* path) { return file_filter(mode, path, filter); }

    // The next dialog's custom entry, "text|pattern"; empty for none.
    std::string offered() {
        file_filter(FilterMode::BEFORE, "", filter);
        const std::string text = filter;
        if (text.empty())
            return "";
        const char* pattern = filter + text.size() + 1;
        EXPECT_EQ(pattern[std::strlen(pattern) + 1], '\0');
        return text + "|" + pattern;
    }

    char filter[CUSTOM_FILTER_SIZE] = "left over";
};

TEST_F(FileFilterTest, TheFirstDotOfThePathDecidesTheType) {
    struct Case {
        const char* label;
        const char* path;
        int named;
        int chosen;
        const char* offered_named;
        const char* offered_chosen;
    };
    const Case cases[] = {
        {"first of the list", "/w/a.NC", 1, 1, "", ""},
        {"known, in small letters", "/w/a.nci", 2, 2, "", ""},
        {"mixed letters", "/w/a.Doc", 3, 3, "", ""},
        {"fourth", "/w/a.igs", 4, 4, "", ""},
        {"fifth", "/w/a.PST", 5, 5, "", ""},
        {"no dot", "/w/a", 1, 6, "", ""},
        {"unknown", "/w/a.abc", 0, 0, "Custom *.abc|*.abc", "Custom *.abc|*.abc"},
        {"only begins like a known one", "/w/a.ncx", 0, 0, "Custom *.ncx|*.ncx", "Custom *.ncx|*.ncx"},
        {"two dots", "/w/a.b.nc", 0, 0, "Custom *.b.nc|*.b.nc", "Custom *.b.nc|*.b.nc"},
        {"as long as the memory of named files", "/w/a.12345", 0, 0, "Custom *.12345|*.12345",
         "Custom *.12345|*.12345"},
        {"as long as the dialogs' memory", "/w/a.123456789", 6, 0, "", "Custom *.123456789|*.123456789"},
        {"too long for both", "/w/a.1234567890", 6, 6, "", ""},
        {"a folder's dot comes first", "/w.older/shelf/a.nc", 6, 6, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        SetUp();
        EXPECT_EQ(take(FilterMode::NAMED, c.path), c.named);
        EXPECT_STREQ(filter, "");
        EXPECT_EQ(offered(), c.offered_named);
        SetUp();
        EXPECT_EQ(take(FilterMode::CHOSEN, c.path), c.chosen);
        EXPECT_EQ(offered(), c.offered_chosen);
    }
}

TEST_F(FileFilterTest, ADialogGoesByTheFileChosenLastBeforeOneThatWasNamed) {
    take(FilterMode::NAMED, "/named/a.abc");
    EXPECT_EQ(offered(), "Custom *.abc|*.abc");
    EXPECT_STREQ(dialog_folder(), "/named");
    EXPECT_STREQ(dialog_extension(), "abc");

    take(FilterMode::CHOSEN, "/chosen/b.xyz");
    take(FilterMode::NAMED, "/named/c.def");
    EXPECT_EQ(offered(), "Custom *.xyz|*.xyz");
    EXPECT_STREQ(dialog_folder(), "/chosen");
    EXPECT_STREQ(dialog_extension(), "xyz");

    // A known type leaves room for the named file's again.
    take(FilterMode::CHOSEN, "/chosen/d.nc");
    EXPECT_STREQ(dialog_extension(), "");
    EXPECT_EQ(offered(), "Custom *.def|*.def");
    EXPECT_STREQ(dialog_folder(), "/chosen");
}

TEST_F(FileFilterTest, FoldersEndWithoutTheirSlashButForTheRoot) {
    take(FilterMode::CHOSEN, "/shelf.d/part/a.nc");
    EXPECT_STREQ(dialog_folder(), "/shelf.d/part");
    take(FilterMode::CHOSEN, "/a.nc");
    EXPECT_STREQ(dialog_folder(), "/");
}

}  // namespace
}  // namespace hexlane
