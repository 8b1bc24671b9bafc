// A person at work until the power goes: opens two projects and an untitled one, edits them at
// random for ever, and writes down every state and what the documents say of it. To be killed.
//
//   kill_child FOLDER SEED
//
// Lines on standard output: the project (its path, "untitled"), a word and its argument:
//   state DIGEST MILLISECONDS   the records as they are now, at that time of the monotonic clock
//   saved DIGEST                the document says that this state is in the file
//   ready -                     all three are open
#include <time.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QTimer>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "model/edits.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "state_digest.h"

namespace zorvel {
namespace {

long long milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

// In the pipe before anything else happens.
void say(const Document& document, const std::string& words) {
    const std::string name =
        document.isUntitled() ? "untitled" : document.displayName().toStdString();
    const std::string line = name + " " + words + "\n";
    if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) _exit(3);
}

class Person : public QObject {
  public:
    Person(const QString& folder, unsigned seed)
        : controller_(jobs_, {folder + "/untitled", folder + "/backups"}), random_(seed) {
        connect(&controller_, &DocumentController::documentDidOpen, this,
                [this](Document* document) { take(*document); });
        connect(&controller_, &DocumentController::openDidFail, this,
                [](const QString& path, const QString& message) {
                    std::fprintf(stderr, "%s %s\n", qPrintable(path), qPrintable(message));
                    _exit(2);
                });
        for (const char* name : {"first", "second"}) {
            controller_.open(folder + "/" + name + ".zorvel");
        }
        if (QDir(folder + "/untitled").isEmpty()) take(controller_.newDocument());
        controller_.recover();
    }

  private:
    void take(Document& document) {
        documents_.push_back(&document);
        tell(document);
        say(document, "saved " + digest(document));
        connect(&document, &Document::saveStateDidChange, this, [&document] {
            if (document.saveState() == Document::SaveState::saved) {
                say(document, "saved " + digest(document));
            }
        });
        if (documents_.size() == 3) edit();
    }

    void edit() {
        if (!ready_) say(*documents_.front(), "ready -");
        ready_ = true;
        Document& document = *documents_[below(documents_.size())];
        const std::size_t count = 1 + below(3);
        for (std::size_t i = 0; i < count; ++i) editOnce(document.project().objectContext());
        tell(document);
        QTimer::singleShot(static_cast<int>(below(40)), this, [this] { edit(); });
    }

    void editOnce(ObjectContext& context) {
        const auto censuses = context.censuses();
        const std::size_t choice = below(20);
        if (censuses.empty() || (choice < 3 && censuses.size() < 40)) {
            const Census census = addCensus(context);
            editName(context, census, "census " + std::to_string(below(1000)));
            return;
        }
        const Census census = censuses[below(censuses.size())];
        const auto taxa = census.taxa();
        if (choice == 3) {
            deleteCensuses(context, {census});
        } else if (choice < 6) {
            context.undo();
        } else if (choice == 6) {
            context.redo();
        } else if (choice == 7) {
            importCensuses(context, {MockCensus(), MockCensus()});
        } else if (choice == 8) {
            editLatitude(context, census, static_cast<double>(below(90)));
        } else if (choice < 12 || taxa.empty()) {
            editName(context, addTaxon(context, census), "taxon " + std::to_string(below(1000)));
        } else if (choice == 12) {
            deleteTaxa(context, {taxa[below(taxa.size())]});
        } else {
            editAbundance(context, taxa[below(taxa.size())], static_cast<int>(below(1000)));
        }
    }

    void tell(const Document& document) {
        say(document, "state " + digest(document) + " " + std::to_string(milliseconds()));
    }
    static std::string digest(const Document& document) {
        return stateDigest(document.project().objectContext());
    }
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    JobQueue jobs_;
    DocumentController controller_;
    std::mt19937 random_;
    std::vector<Document*> documents_;
    bool ready_ = false;
};

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName("zorvel");
    QCoreApplication::setApplicationName("zorvel");
    if (argc < 3) return 1;
    const zorvel::Person person(QString::fromLocal8Bit(argv[1]),
                                static_cast<unsigned>(std::stoul(argv[2])));
    return QCoreApplication::exec();
}
