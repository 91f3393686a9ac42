// Where a contact sheet goes: never over something else, never onto the card's pictures, whole or not at all.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "SheetCard.h"
#include "SheetPage.h"

using clitest::ErrorLine;
using clitest::OnCard;
using clitest::Options;
using clitest::Outcome;
using clitest::ReadFile;
using clitest::SheetPage;
using clitest::Words;
using dcftest::Card;
using Json = nlohmann::json;
namespace fs = std::filesystem;

namespace {

/// A card with two pictures, and a folder for its sheet.
class SheetOutput : public testing::Test {
protected:
    SheetOutput() : m_out(m_place.Root() + "/sheet.html") {
        m_card.AddFile("100PHOTO", "KVR_0001.JPG", {clitest::Picture(clitest::kRed), 0644, {}});
        m_card.AddFile("100PHOTO", "KVR_0002.JPG", {clitest::Picture(clitest::kGreen), 0644, {}});
    }
    [[nodiscard]] Outcome Make(const Words& more = {}, const Options& options = {}) const {
        Words words = {"sheet", "--out", m_out};
        words.insert(words.end(), more.begin(), more.end());
        return OnCard(m_card.Root(), words, options);
    }
    [[nodiscard]] Words Left() const {
        Words names;
        for (const auto& entry : fs::directory_iterator(m_place.Root())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    void Write(const std::string& content) const {
        std::ofstream(m_out, std::ios::binary) << content;
    }

    Card m_card;
    Card m_place;
    std::string m_out;
};

TEST_F(SheetOutput, IsOneFileAndALine) {
    const Outcome run = Make();
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    const std::size_t size = fs::file_size(m_out);
    EXPECT_EQ(run.out.rfind("Wrote " + m_out + " (", 0), 0U) << run.out;
    EXPECT_NE(run.out.find("): 2 files in 1 folder, "), std::string::npos) << run.out;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(Left(), Words{"sheet.html"});
    EXPECT_GT(size, 1000U);
    EXPECT_EQ(ReadFile(m_out), OnCard(m_card.Root(), {"sheet", "--out", "-"}).out);
}

TEST_F(SheetOutput, IsDescribedByADocument) {
    const Outcome run = Make({"--json"});
    const Json json = Json::parse(run.out);
    EXPECT_EQ(json["format"], "dcfctl.sheet");
    EXPECT_EQ(json["out"], m_out);
    EXPECT_EQ(json["out_bytes"], Json());
    EXPECT_EQ(json["bytes"], fs::file_size(m_out));
    EXPECT_EQ(json["counts"]["JPG"], 2);
    EXPECT_EQ(json["folders"], 1);
    const int made = clitest::kMakesThumbnails ? 2 : 0;
    EXPECT_EQ(json["thumbnails"], (Json{{"embedded", 0}, {"made", made}, {"missing", 2 - made}}));
    EXPECT_EQ(json["error"], Json());
}

TEST_F(SheetOutput, ReplacesASheetAndNothingElse) {
    ASSERT_EQ(Make().exit, clitest::kSuccess);
    m_card.AddFile("100PHOTO", "KVR_0003.JPG");
    EXPECT_EQ(Make().exit, clitest::kSuccess);
    EXPECT_EQ(SheetPage(ReadFile(m_out)).Count("//h:ol/h:li"), 3U);

    for (const char* other : {"a letter", "", "<!DOCTYPE html>\n<html lang=\"en\"></html>"}) {
        Write(other);
        const Outcome run = Make();
        EXPECT_EQ(run.exit, clitest::kRefused);
        EXPECT_EQ(run.err, ErrorLine("'" + m_out +
                                     "' is there already and is no contact sheet; name another file, or "
                                     "give --force to replace it"));
        EXPECT_EQ(ReadFile(m_out), other);
    }
    EXPECT_EQ(Make({"--force"}).exit, clitest::kSuccess);
    EXPECT_EQ(SheetPage(ReadFile(m_out)).Count("//h:ol/h:li"), 3U);
    EXPECT_EQ(Left(), Words{"sheet.html"});
}

TEST_F(SheetOutput, NeverReplacesWhatIsNoFile) {
    const std::string target = m_place.Root() + "/target";
    std::ofstream(target) << "precious";
    const auto refused = [&](const char* kind) {
        for (const Words& more : {Words{}, Words{"--force"}}) {
            const Outcome run = Make(more);
            EXPECT_EQ(run.exit, clitest::kRefused) << kind;
            EXPECT_EQ(run.err, ErrorLine("'" + m_out + "' is " + kind + "; name a file, or - for standard output"));
        }
    };
    fs::create_symlink(target, m_out);
    refused("a link");
    fs::remove(m_out);
    fs::create_directory(m_out);
    refused("a folder");
    EXPECT_EQ(ReadFile(target), "precious");
}

TEST_F(SheetOutput, IsNeverAmongThePicturesOfTheCard) {
    const std::string link = m_place.Root() + "/link";
    fs::create_symlink(m_card.Dcim(), link);
    const Words before = clitest::Snapshot(m_card.Root());
    for (const std::string& out :
         {m_card.Dcim() + "/sheet.html", m_card.Path("100PHOTO") + "/sheet.html", link + "/100PHOTO/sheet.html",
          m_card.Root() + "/x/../DCIM/sheet.html", m_card.Dcim() + "/100PHOTO/../sheet.html"}) {
        const Outcome run = OnCard(m_card.Root(), {"sheet", "--force", "--out", out});
        EXPECT_EQ(run.exit, clitest::kRefused) << out;
    }
    EXPECT_EQ(clitest::Snapshot(m_card.Root()), before);
    const std::string beside = m_card.Root() + "/sheet.html";
    EXPECT_EQ(OnCard(m_card.Root(), {"sheet", "--out", beside}).exit, clitest::kSuccess) << "beside DCIM it may lie";
}

TEST_F(SheetOutput, NeedsAFolderThatIsThereAndCanBeWritten) {
    m_out = m_place.Root() + "/none/sheet.html";
    const Outcome missing = Make();
    EXPECT_EQ(missing.exit, clitest::kRefused);
    EXPECT_NE(missing.err.find("cannot be reached (No such file or directory)"), std::string::npos) << missing.err;
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can run as another user";
    }
    m_out = m_place.Root() + "/sheet.html";
    ASSERT_EQ(chmod(m_place.Root().c_str(), 0755), 0);
    ASSERT_EQ(chmod(m_card.Root().c_str(), 0755), 0);
    Options options;
    options.user = 65534;
    const Outcome run = Make({}, options);
    EXPECT_EQ(run.exit, clitest::kIncomplete);
    EXPECT_NE(run.err.find("(no file can be made in '" + m_place.Root() + "/' (Permission denied))"), std::string::npos)
        << run.err;
    EXPECT_EQ(Left(), Words{});
}

/// Limits the size of a file, which is to the writer what a full disk is, for as long as it lives.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) {
        (void)getrlimit(RLIMIT_FSIZE, &m_before); // of this process
        const rlimit limit = {bytes, m_before.rlim_max};
        (void)setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, SIG_IGN);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        (void)setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, SIG_DFL);
    }

private:
    rlimit m_before = {};
};

TEST_F(SheetOutput, OnAFullDiskLeavesNothingAndWhatWasThere) {
    ASSERT_EQ(Make().exit, clitest::kSuccess);
    const std::string before = ReadFile(m_out);
    const SmallDisk disk(3000);
    const Outcome run = Make();
    EXPECT_EQ(run.exit, clitest::kIncomplete);
    EXPECT_EQ(run.err, ErrorLine("the sheet '" + m_out +
                                 "' could not be written (File too large), and nothing of it stays; look "
                                 "at the room and the permissions there"));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(ReadFile(m_out), before);
    EXPECT_EQ(Left(), Words{"sheet.html"});
}

TEST_F(SheetOutput, ToAFullStandardOutputIsAnError) {
    Options options;
    options.outFile = "/dev/full";
    const Outcome run = OnCard(m_card.Root(), {"sheet", "--out", "-"}, options);
    EXPECT_EQ(run.exit, clitest::kIncomplete);
    EXPECT_NE(run.err.find("the output cannot be written (No space left on device)"), std::string::npos) << run.err;
}

TEST_F(SheetOutput, WhoseReaderLeavesEarlyEndsInSilence) {
    const std::string command = std::string(DCFCTL_PROGRAM) + " --card " + m_card.Root() + " sheet --out - 2>" +
                                m_place.Root() + "/err | head -c 20 >/dev/null; exit ${PIPESTATUS[0]}";
    const int status = std::system(("bash -c '" + command + "'").c_str());
    EXPECT_TRUE(WEXITSTATUS(status) == clitest::kIncomplete || WEXITSTATUS(status) == clitest::kSuccess);
    EXPECT_EQ(ReadFile(m_place.Root() + "/err"), "");
}

TEST_F(SheetOutput, ThatIsInterruptedLeavesNothing) {
    for (int number = 1; number <= 3000; ++number) {
        fs::create_hard_link(m_card.Path("100PHOTO", "KVR_0001.JPG"),
                             m_card.Path("100PHOTO", "X" + dcftest::DcfName(number).substr(1)));
    }
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        (void)dup2(nowhere, STDERR_FILENO);
        clitest::RunAsIs({"--card", m_card.Root(), "sheet", "--out", m_out}, {});
    }
    while (Left().empty()) { // until its temporary file is there
        ASSERT_EQ(waitpid(child, nullptr, WNOHANG), 0) << "it has ended too early";
        usleep(200);
    }
    ASSERT_EQ(kill(child, SIGINT), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), clitest::kIncomplete);
    EXPECT_EQ(Left(), Words{});
}

TEST_F(SheetOutput, ThatIsNotUnderstoodIsRefusedAtOnce) {
    for (const Words& words : {Words{"sheet"},
                               {"sheet", "--out", ""},
                               {"sheet", "--out", "-", "--json"},
                               {"sheet", "--out", m_out, "--thumbnails", "-1"},
                               {"sheet", "--out", m_out, "--thumbnails", "many"}}) {
        const Outcome run = OnCard(m_card.Root(), words);
        EXPECT_EQ(run.exit, clitest::kUsage) << run.Describe();
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(Left(), Words{});
}

TEST_F(SheetOutput, OfNoCardIsNone) {
    EXPECT_EQ(OnCard(m_card.Root() + "/none", {"sheet", "--out", m_out}).exit, clitest::kCardUnreadable);
    EXPECT_EQ(Left(), Words{});
}

} // namespace
