#include "model/file_messages.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>

namespace zorvel {
namespace {

TEST(FileMessages, EachTroubleHasItsOwnSentences) {
    const std::map<FileTrouble, std::string> words = {
        {FileTrouble::notFound, "no such file"},
        {FileTrouble::notAFile, "a folder or a device"},
        {FileTrouble::empty, "is empty"},
        {FileTrouble::notAProject, "not a project file"},
        {FileTrouble::foreignDatabase, "belongs to another program"},
        {FileTrouble::newerVersion, "later version"},
        {FileTrouble::damaged, "is damaged"},
        {FileTrouble::hostile, "no Zorvel project contains"},
        {FileTrouble::strangeCompanion, "A file beside the project"},
        {FileTrouble::interruptedWrite, "ends in -journal"},
        {FileTrouble::heldElsewhere, "open in another running Zorvel"},
        {FileTrouble::busy, "is using the file"},
        {FileTrouble::noLocks, "does not lock files"},
        {FileTrouble::noRoom, "used up the numbers"},
        {FileTrouble::readOnlyFile, "may be read but not changed"},
        {FileTrouble::readOnlyFolder, "The folder of the file"},
        {FileTrouble::noPermission, "You have no permission"},
        {FileTrouble::diskFull, "The disk is full"},
        {FileTrouble::inputOutput, "reported an error"},
        {FileTrouble::moved, "moved, renamed, deleted or replaced"},
        {FileTrouble::changedElsewhere, "Another program has changed"},
        {FileTrouble::other, "The file cannot be used."},
    };
    EXPECT_EQ(words.size(), static_cast<std::size_t>(FileTrouble::other) + 1);
    for (const auto& [trouble, word] : words) {
        const std::string text = fileTroubleText(trouble);
        EXPECT_NE(text.find(word), std::string::npos) << text << " lacks " << word;
        EXPECT_TRUE(text.ends_with('.')) << text;
    }
}

TEST(FileMessages, DetailAndSystemErrorStandInBrackets) {
    const std::string full = fileTroubleText(FileTrouble::diskFull);
    EXPECT_EQ(fileMessage({FileTrouble::diskFull, "", 0}), full);
    EXPECT_EQ(fileMessage({FileTrouble::diskFull, "page 3", 0}), full + " (page 3)");
    EXPECT_EQ(fileMessage({FileTrouble::diskFull, "", ENOSPC}),
              full + " (No space left on device)");
    EXPECT_EQ(fileMessage({FileTrouble::diskFull, "page 3", ENOSPC}),
              full + " (page 3: No space left on device)");
}

}  // namespace
}  // namespace zorvel
