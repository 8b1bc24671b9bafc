#include "model/file_messages.h"

#include <algorithm>
#include <iterator>
#include <system_error>

namespace zorvel {

namespace {

constexpr struct {
    FileTrouble trouble;
    const char* text;
} troubleTexts[] = {
    {FileTrouble::notFound, "There is no such file. Check its name and folder."},
    {FileTrouble::notAFile, "This is a folder or a device, not a file. Choose a project file."},
    {FileTrouble::empty,
     "The file is empty: it holds no project. Open a backup or another copy of it."},
    {FileTrouble::notAProject,
     "This is not a project file, and nothing in it was changed. Text files of censuses "
     "and species can be imported into a project."},
    {FileTrouble::foreignDatabase,
     "This database belongs to another program, and nothing in it was changed. Export "
     "text from that program to import it into a project."},
    {FileTrouble::newerVersion,
     "A later version of Zorvel made this project, and nothing in it was changed. Open it "
     "with that version."},
    {FileTrouble::damaged,
     "The file is damaged, and nothing in it was changed. Open a backup or another copy "
     "of it."},
    {FileTrouble::hostile,
     "The file contains database objects that no Zorvel project contains, so it was not "
     "opened or changed. Ask its sender for a clean copy."},
    {FileTrouble::strangeCompanion,
     "A file beside the project was not left there by Zorvel, and opening the project "
     "would change it or other files; nothing was changed. Move that file to another "
     "folder, then try again."},
    {FileTrouble::interruptedWrite,
     "A program was stopped while it wrote to the project, and the file or its folder may "
     "not be written to restore it. Copy the project and the file beside it that ends in "
     "-journal to a folder of your own, and open that copy."},
    {FileTrouble::heldElsewhere,
     "The project is open in another running Zorvel, and only that one may change it. "
     "Close it there first."},
    {FileTrouble::busy,
     "Another program is using the file, so it cannot be read or written now. Close that "
     "program, or wait and try again."},
    {FileTrouble::noLocks,
     "The disk or network drive of the file does not lock files, so it cannot be used "
     "safely there. Save or copy it to another disk."},
    {FileTrouble::noRoom,
     "The project has used up the numbers for its records, so changes cannot be saved in "
     "it. Copy its censuses into a new project."},
    {FileTrouble::readOnlyFile,
     "The file may be read but not changed, so changes cannot be saved in it. Save a copy "
     "under another name, or change its permissions."},
    {FileTrouble::readOnlyFolder,
     "The folder of the file may not be written, so changes cannot be saved there safely. "
     "Save a copy in another folder."},
    {FileTrouble::noPermission,
     "You have no permission to use the file. Ask its owner, or change its permissions."},
    {FileTrouble::diskFull,
     "The disk is full. What was saved before is still in the file, the latest changes "
     "are not. Free some space, or save to another disk."},
    {FileTrouble::inputOutput,
     "The disk or the network reported an error while the file was read or written. "
     "Changes since it was last saved may not be in it. Check the connection, or save to "
     "another disk."},
    {FileTrouble::moved,
     "The file was moved, renamed, deleted or replaced while it was open, so the latest "
     "changes are not in it. Save the project again under a name of your choice."},
    {FileTrouble::changedElsewhere,
     "Another program has changed the file while it was open. To keep both, it is not "
     "written again. Save your project under another name."},
    {FileTrouble::other,
     "The file cannot be used. Try again, or save the project under another name."},
};

}  // namespace

const char* fileTroubleText(FileTrouble trouble) {
    return std::find_if(std::begin(troubleTexts), std::end(troubleTexts),
                        [trouble](const auto& row) { return row.trouble == trouble; })
        ->text;
}

std::string fileMessage(const FileProblem& problem) {
    if (problem.trouble == FileTrouble::notFound) return fileTroubleText(problem.trouble);
    std::string more = problem.detail;
    if (problem.systemError != 0) {
        if (!more.empty()) more += ": ";
        more += std::generic_category().message(problem.systemError);
    }
    std::string message = fileTroubleText(problem.trouble);
    return more.empty() ? message : message + " (" + more + ")";
}

}  // namespace zorvel
