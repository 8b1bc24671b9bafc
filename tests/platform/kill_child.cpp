// A user at work until the power goes: opens two projects and an untitled one, edits them in turn
// for ever, and writes down every state and what the documents say of it. To be killed.
//
//   kill_child FOLDER
//
// State N of a project: 1 + N % 20 censuses of the name N, each with one taxon of abundance N.
// Lines on standard output, PROJECT being its name or "untitled":
//   PROJECT state N MILLISECONDS   the records are now in state N, at that monotonic time
//   PROJECT saved N 0              the document says that this state is in the file
#include <time.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QTimer>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "model/edits.h"
#include "platform/document_controller.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "store/object_context.h"

namespace zorvel {
namespace {

std::int64_t stateOf(const ObjectContext& context) {
    return context.censusCount() == 0 ? 0 : context.taxa().front().abundance();
}

void makeState(ObjectContext& context, std::int64_t state) {
    const UndoStep step(context, "Edit");
    deleteCensuses(context, context.censuses());
    for (std::int64_t i = 0; i <= state % 20; ++i) {
        const Census census = addCensus(context);
        editName(context, census, std::to_string(state));
        editAbundance(context, addTaxon(context, census), state);
    }
}

class User : public QObject {
  public:
    explicit User(const QString& folder)
        : controller_(jobs_, {folder + "/untitled", folder + "/backups"}) {
        connect(&controller_, &DocumentController::documentDidOpen, this, &User::take);
        connect(&controller_, &DocumentController::openDidFail, this, [] { _exit(2); });
        for (const char* name : {"first", "second"}) {
            const auto file = std::make_shared<NamedFile>(folder + "/" + name + ".zorvel");
            controller_.open(file, std::nullopt);
        }
        if (QDir(folder + "/untitled").isEmpty()) take(&controller_.newDocument());
        controller_.recover();
    }

  private:
    void take(Document* document) {
        documents_.push_back(document);
        say(*document, "state");
        say(*document, "saved");
        connect(document, &Document::saveStateDidChange, this, [document] {
            if (document->saveState() == Document::SaveState::saved) say(*document, "saved");
        });
        if (documents_.size() == 3) edit();
    }
    void edit() {
        Document& document = *documents_[random_() % documents_.size()];
        ObjectContext& context = document.project().objectContext();
        makeState(context, stateOf(context) + 1);
        say(document, "state");
        QTimer::singleShot(static_cast<int>(random_() % 40), this, [this] { edit(); });
    }
    // In the pipe before anything else happens.
    static void say(const Document& document, const std::string& word) {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const std::string line =
            (document.isUntitled() ? "untitled" : document.displayName().toStdString()) + " " +
            word + " " + std::to_string(stateOf(document.project().objectContext())) + " " +
            std::to_string(now.tv_sec * 1000LL + now.tv_nsec / 1000000) + "\n";
        if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) _exit(3);
    }

    JobQueue jobs_;
    DocumentController controller_;
    std::mt19937 random_;
    std::vector<Document*> documents_;
};

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc < 2) return 1;
    const zorvel::User user(QString::fromLocal8Bit(argv[1]));
    return QCoreApplication::exec();
}
