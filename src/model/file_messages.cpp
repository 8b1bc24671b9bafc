#include "model/file_messages.h"

#include <system_error>

namespace zorvel {

const char* fileTroubleText(FileTrouble trouble) {
    switch (trouble) {
        case FileTrouble::notFound:
            return "There is no such file. Check its name and folder.";
        case FileTrouble::notAFile:
            return "This is a folder or a device, not a file. Choose a project file.";
        case FileTrouble::empty:
            return "The file is empty: it holds no project. Open a backup or another copy of it.";
        case FileTrouble::notAProject:
            return "This is not a project file, and nothing in it was changed. Text files of "
                   "censuses and species can be imported into a project.";
        case FileTrouble::foreignDatabase:
            return "This database belongs to another program, and nothing in it was changed. "
                   "Export text from that program to import it into a project.";
        case FileTrouble::newerVersion:
            return "A later version of Zorvel made this project, and nothing in it was changed. "
                   "Open it with that version.";
        case FileTrouble::damaged:
            return "The file is damaged, and nothing in it was changed. Open a backup or another "
                   "copy of it.";
        case FileTrouble::hostile:
            return "The file contains database objects that no Zorvel project contains, so it was "
                   "not "
                   "opened or changed. Ask its sender for a clean copy.";
        case FileTrouble::strangeCompanion:
            return "A file beside the project was not left there by Zorvel, and opening the "
                   "project "
                   "would change it or other files; nothing was changed. Move that file to another "
                   "folder, then try again.";
        case FileTrouble::interruptedWrite:
            return "A program was stopped while it wrote to the project, and the file or its "
                   "folder "
                   "may not be written to restore it. Copy the project and the file beside it that "
                   "ends in -journal to a folder of your own, and open that copy.";
        case FileTrouble::heldElsewhere:
            return "The project is open in another running Zorvel, and only that one may change "
                   "it. "
                   "Close it there first.";
        case FileTrouble::busy:
            return "Another program is using the file, so it cannot be read or written now. "
                   "Close that program, or wait and try again.";
        case FileTrouble::noLocks:
            return "The disk or network drive of the file does not lock files, so it cannot be "
                   "used safely there. Save or copy it to another disk.";
        case FileTrouble::noRoom:
            return "The project has used up the numbers for its records, so changes cannot be "
                   "saved in "
                   "it. Copy its censuses into a new project.";
        case FileTrouble::readOnlyFile:
            return "The file may be read but not changed, so changes cannot be saved in it. Save "
                   "a copy under another name, or change its permissions.";
        case FileTrouble::readOnlyFolder:
            return "The folder of the file may not be written, so changes cannot be saved there "
                   "safely. Save a copy in another folder.";
        case FileTrouble::noPermission:
            return "You have no permission to use the file. Ask its owner, or change its "
                   "permissions.";
        case FileTrouble::diskFull:
            return "The disk is full. What was saved before is still in the file, the latest "
                   "changes are not. Free some space, or save to another disk.";
        case FileTrouble::inputOutput:
            return "The disk or the network reported an error while the file was read or written. "
                   "Changes since it was last saved may not be in it. Check the connection, or "
                   "save to another disk.";
        case FileTrouble::moved:
            return "The file was moved, renamed, deleted or replaced while it was open, so the "
                   "latest changes are not in it. Save the project again under a name of your "
                   "choice.";
        case FileTrouble::changedElsewhere:
            return "Another program has changed the file while it was open. To keep both, it is "
                   "not written again. Save your project under another name.";
        case FileTrouble::other:
            break;
    }
    return "The file cannot be used. Try again, or save the project under another name.";
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
