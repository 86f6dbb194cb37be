#include "base/error.h"

#include "base/log.h"
#include "base/log_file.h"
#include "base/reporter_family.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

struct Named : ErrorClass {
    explicit Named(const char* name) { SetName(name); }
};
struct Unnamed : ErrorClass {};
struct Simple : ErrorClassSimple {};
struct Engine : KRN_Base {
    explicit Engine(const char* name) { SetName(name); }
};

TEST(Reporter, ErrorsThrowTheRecordOfTheirFamily) {
    try {
        Named("File").Error("%s: %i", "a.bin", 17);
    } catch (const ErrorMsg& record) {
        EXPECT_STREQ(record.class_name, "File");
        EXPECT_STREQ(record.message, "a.bin: 17");
    }
    EXPECT_THROW(Engine("KRN_Camera").Error("x"), KRN_Error);
    EXPECT_EQ(ErrorOf([] { Simple().Error("a"); }), "ErrorClassSimple: a");
    EXPECT_EQ(ErrorOf([] { Unnamed().Error("b"); }), "Undefined: b");
    EXPECT_EQ(ErrorOf([] { Engine("KRN_Mesh").Error("c"); }), "KRN_Mesh: c");
}

TEST(Reporter, CutsWhatIsTooLong) {
    const std::string name(40, 'n'), message(5000, 'm');
    EXPECT_EQ(ErrorOf([&] { Named(name.c_str()).Error("%s", message.c_str()); }),
              std::string(31, 'n') + ": " + std::string(1023, 'm'));
}

TEST(Reporter, CopiesTheWordForDerivedClasses) {
    struct WithWord : KRN_Base {
        using KRN_Base::user_word_;
    };
    WithWord first;
    first.user_word_ = 123;
    EXPECT_EQ(WithWord(first).user_word_, 123u);
}

TEST(ReportListener, HearsEveryReportWithItsPlace) {
    Reports reports;
    const Named file("File");
    file.Warning("first %i", 7);
    {
        SourceFileScope outer("effects.cfg");
        file.Warning("same");
        SetSourcePlace({12});
        file.Warning("same");
        {
            const auto place = [](const void*) { return TextPlace{34, 5}; };
            SourceFileScope inner("fire.kva", place, nullptr);
            ErrorOf([] { Engine("KRN_Mesh").Error("broken"); });
        }
        file.Warning("same");
    }
    file.Warning("last");
    EXPECT_THAT(reports.All(), ElementsAre("warning File: first 7", "warning File: same @effects.cfg:0",
                                           "warning File: same @effects.cfg:12", "error KRN_Mesh: broken @fire.kva:34",
                                           "warning File: same @effects.cfg:12", "warning File: last"));
}

TEST(ReportListener, PlacesMayEndInAnyOrder) {
    Reports reports;
    auto first = std::make_unique<SourceFileScope>("a");
    auto second = std::make_unique<SourceFileScope>("b");
    auto third = std::make_unique<SourceFileScope>("c");
    second.reset();
    Named("X").Warning("1");
    third.reset();
    Named("X").Warning("2");
    first.reset();
    SetSourcePlace({5});
    Named("X").Warning("3");
    EXPECT_THAT(reports.All(), ElementsAre("warning X: 1 @c:0", "warning X: 2 @a:0", "warning X: 3"));
}

// The log of the process begins in the folder of the first test that logs; these look into a process of their own.
class LogDeathTest : public TemporaryFolder {
  protected:
    LogDeathTest() { testing::FLAGS_gtest_death_test_style = "fast"; }

    /// The lines, without their suffix, that an action logs when it is the first thing that happens.
    template <class Action>
    std::vector<std::string> LogOf(Action action) {
        EXPECT_EXIT((action(), std::exit(0)), testing::ExitedWithCode(0), "");
        std::vector<std::string> lines = ReadLines(Folder() / "logfile.txt");
        for (std::string& line : lines) line = line.substr(0, line.rfind("(Time:"));
        return lines;
    }
};

TEST_F(LogDeathTest, FirstEntryEmptiesTheFileAndStaysInItsFolder) {
    WriteFile("logfile.txt", "old\n");
    std::filesystem::create_directory("elsewhere");
    EXPECT_THAT(LogOf([] {
                    WriteLog("one %i", 11);
                    std::filesystem::current_path("elsewhere");
                    WriteLog("two");
                }),
                ElementsAre("one 11", "two"));
    for (const std::string& line : ReadLines("logfile.txt"))
        EXPECT_THAT(line, testing::MatchesRegex("(one 11|two)\\(Time:[0-9]+\\.[0-9][0-9], free sysmem:[0-9]+\\)"));
}

TEST_F(LogDeathTest, FoldsRepeatedWarnings) {
    const auto five_times = [](const Named& reporter) {
        for (int i = 0; i < 5; ++i) reporter.Warning("again");
    };
    EXPECT_THAT(LogOf([&] {   // the first warning of a process is not remembered
                    const Named reporter("File");
                    five_times(reporter);
                    reporter.Warning("other");
                    five_times(reporter);
                    Named("Other").Warning("again");
                    five_times(Named("Other"));   // another object of the same class
                }),                               // the last of its family: what is pending is written
                ElementsAre("Warning:File: again", "Warning:File: again", "Warning Repeat: 3", "Warning:File: other",
                            "Warning:File: again", "Warning Repeat: 4", "Warning:Other: again", "Warning Repeat: 5"));
    std::filesystem::remove("logfile.txt");
    EXPECT_THAT(LogOf([] {
                    for (int i = 0; i < 3; ++i) Engine("KRN_Mesh").Warning("a");
                    ErrorOf([] { Named("File").Error("a.bin: File is not writeable"); });
                    ErrorOf([] { Engine("KRN_Mesh").Error("100%% %s", "%s"); });
                }),
                ElementsAre("Warning:KRN_Mesh: a", "Warning:KRN_Mesh: a", "Warning Repeat: 1",
                            "Error:File: a.bin: File is not writeable", "Error:KRN_Mesh: 100% %s"));
}

/// Lets a family log all warnings that it may but one while the log cannot be opened, then two more.
template <class Reporter>
void WarnBeyondTheLimit(const Reporter& reporter) {
    std::filesystem::create_directory("logfile.txt");
    for (int i = 1; i < 65536; ++i) reporter.Warning("%i", i);
    std::filesystem::remove("logfile.txt");
    reporter.Warning("last");
    reporter.Warning("beyond");
}

TEST_F(LogDeathTest, EachFamilyStopsAfter65536Warnings) {
    EXPECT_THAT(LogOf([] { WarnBeyondTheLimit(Named("File")); }),
                ElementsAre("Warning:File: last", "ErrorClass: Maximum number of warnings reached!"));
    std::filesystem::remove("logfile.txt");
    EXPECT_THAT(LogOf([] { WarnBeyondTheLimit(Engine("KRN_Mesh")); }),
                ElementsAre("Warning:KRN_Mesh: last", "KRN_Base: Maximum number of warnings reached!"));
}

TEST_F(LogDeathTest, SaturatedRepeatsAreMarked) {
    EXPECT_EQ(ReporterFamily::kMaxRepeats, 268435455u);   // too many for a test
    EXPECT_THAT(LogOf([] {
                    ReporterFamily family("limit", 100, 4);
                    family.Warn("File", "first");
                    for (int i = 0; i < 20; ++i) family.Warn("File", "same");
                    family.Warn("File", "next");
                    for (int i = 0; i < 20; ++i) family.Warn("File", "next");
                    family.Enter();
                    family.Leave();   // always the plain form
                }),
                ElementsAre("Warning:File: first", "Warning:File: same", "Warning Repeat: >4", "Warning:File: next",
                            "Warning Repeat: 4"));
}

TEST_F(LogDeathTest, LongLinesKeepTheirSuffix) {
    const std::string text(3000, 'x');
    LogOf([&] { WriteLog("%s", text.c_str()); });
    const std::vector<std::string> lines = ReadLines("logfile.txt");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].size(), 1022u);   // 1024 with line end and terminator
    EXPECT_THAT(lines[0], testing::MatchesRegex("x+\\(Time:[0-9.]+, free sysmem:[0-9]+\\)"));
}

using LogFileTest = TemporaryFolder;

void Write(LogFile& log, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    log.Write(format, arguments);
    va_end(arguments);
}

TEST_F(LogFileTest, LastEntryIsMarked) {
    EXPECT_EQ(LogFile::kMaxEntries, 500000);
    LogFile log(3);
    for (int i = 0; i < 5; ++i) Write(log, "entry %i", i);
    const std::vector<std::string> lines = ReadLines("logfile.txt");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_THAT(lines[2], StartsWith("entry 2(Time:"));
    EXPECT_EQ(lines[3], "Maximum number of log entries reached!");
}

TEST_F(LogFileTest, EntriesThatCannotBeWrittenDoNotCount) {
    std::filesystem::create_directory("logfile.txt");
    LogFile log;
    Write(log, "lost");
    LogFile homeless;
    std::filesystem::create_directory("gone");
    std::filesystem::current_path("gone");
    std::filesystem::remove(Folder() / "gone");
    Write(homeless, "lost");
    std::filesystem::current_path(Folder());
    std::filesystem::remove("logfile.txt");
    for (LogFile* counts_nothing : {&log, &homeless}) {
        WriteFile("logfile.txt", "old\n");
        Write(*counts_nothing, "kept");
        EXPECT_THAT(ReadFile("logfile.txt"), StartsWith("kept(Time:"));   // the first entry, so it empties the file
    }
}

}   // namespace
}   // namespace sparkrig
