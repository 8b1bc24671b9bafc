// Several documents edited, saved elsewhere, closed and opened while one thread writes them all and
// others read: for the thread sanitizer.
#include "document_fixture.h"

namespace zorvel {
namespace {

class DocumentThreadTest : public DocumentFixture {};

TEST_F(DocumentThreadTest, EditsWhileTheWriterReadsWhatWasFrozen) {
    settings.autosave = milliseconds(1);
    restart();
    for (int i = 0; i < 3; ++i) {
        open(makeProject(QString("p%1.zorvel").arg(i), {"North"}));
    }
    run->controller.newDocument();
    const std::vector<Document*> documents = run->controller.documents();
    for (int i = 0; i < 300; ++i) {
        Document& document = *documents[static_cast<std::size_t>(i) % documents.size()];
        ObjectContext& context = document.project().objectContext();
        addNamedCensus(document, std::to_string(i));
        if (i % 5 == 0) context.undo();
        if (i % 7 == 0) document.saveSoon();
        QCoreApplication::processEvents();
    }
    ASSERT_TRUE(
        waitUntil([&] { return std::all_of(documents.begin(), documents.end(), isSaved); }));
    for (int i = 0; i < 3; ++i) {
        const QString path = at(QString("p%1.zorvel").arg(i));
        EXPECT_EQ(namesInFile(path), censusNames(*documents[static_cast<std::size_t>(i)]));
    }
}

TEST_F(DocumentThreadTest, ClosesAndOpensWhileWriting) {
    settings.autosave = milliseconds(1);
    restart();
    const QString path = makeProject("a.zorvel", {"North"});
    for (std::size_t i = 0; i < 15; ++i) {
        Document& document = open(path);
        ASSERT_EQ(censusNames(document).size(), i + 1);
        addNamedCensus(document, std::to_string(i));
        if (i % 2 == 0) QCoreApplication::processEvents();
        if (i % 3 == 0) document.saveSoon();
        run->controller.close(document);
    }
    EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(namesInFile(path).size(), 16u);
}

TEST_F(DocumentThreadTest, MovesWhileWriting) {
    settings.autosave = milliseconds(1);
    restart();
    Document& document = run->controller.newDocument();
    int answers = 0;
    for (int i = 0; i < 20; ++i) {
        addNamedCensus(document, std::to_string(i));
        if (i % 2 == 0) QCoreApplication::processEvents();
        document.saveAs(at(QString("m%1.zorvel").arg(i % 2)),
                        [&](const auto& problem) { answers += problem ? 100 : 1; });
    }
    ASSERT_TRUE(waitUntil([&] { return answers >= 20 && isSaved(&document); }));
    EXPECT_EQ(answers, 20);
    EXPECT_EQ(namesInFile(document.path()).size(), 20u);
    EXPECT_TRUE(untitledFiles().isEmpty());
}

}  // namespace
}  // namespace zorvel
