#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"

#include <gtest/gtest.h>

// The same input and arguments give the same bytes, whatever surrounds the run.

namespace {

std::string fullDocument() {
    FieldDefinition definition;
    definition.observationAttributes = R"(name="a" pa="12.5" date="b" observer="c" xmlns="d" x="e" y="f")";
    definition.configure = configureXml(R"(epoch="2024.5" ha="-1.25" temperature="281.7" pressure="772.3")");
    definition.fields = {fieldXml(scienceTargetXml(R"(targprio="0.1" targsrvy="s" cname="c")") + guideStarXml()),
                         secondFieldXml()};
    return definition.text();
}

ProgramOptions withEnvironment(const std::vector<std::string>& settings) {
    ProgramOptions options;
    options.environment = settings;
    return options;
}

/** Without these variables. */
ProgramOptions without(const std::vector<std::string>& variables) {
    ProgramOptions options;
    options.wrapper = {"env"};
    for (const std::string& variable : variables) {
        options.wrapper.insert(options.wrapper.end(), {"-u", variable});
    }
    return options;
}

} // namespace

TEST(ReproducibleBytes, DoNotDependOnTheHashSeedOfTheEnvironment) {
    const std::string first = configuredBytes(fullDocument());
    for (const char* seed : {"0", "1", "12345", "-1", "4294967295", "", "random"}) {
        SCOPED_TRACE(seed);
        EXPECT_EQ(configuredBytes(fullDocument(), {}, withEnvironment({"QT_HASH_SEED=" + std::string(seed)})), first);
    }
    EXPECT_EQ(configuredBytes(fullDocument(), {}, without({"QT_HASH_SEED"})), first);
}

TEST(ReproducibleBytes, DoNotDependOnTheNamedLocaleOrTheTimeZone) {
    const std::string first = configuredBytes(fullDocument());
    for (const char* locale : {"de_DE.UTF-8", "fr_FR.ISO-8859-1", "C", "POSIX", "C.UTF-8", "tr_TR.UTF-8", ""}) {
        SCOPED_TRACE(locale);
        const std::string name(locale);
        EXPECT_EQ(configuredBytes(fullDocument(), {},
                                  withEnvironment({"LC_ALL=" + name, "LANG=" + name, "LC_NUMERIC=" + name,
                                                   "LANGUAGE=" + name, "TZ=Asia/Kathmandu"})),
                  first);
    }
    EXPECT_EQ(configuredBytes(fullDocument(), {}, without({"LANG", "LC_ALL", "LC_NUMERIC", "LC_CTYPE", "HOME"})),
              first);
}

TEST(ReproducibleBytes, KeepTheDotInALocaleThatHasAComma) {
    const TemporaryFolder locales;
    const std::string name = locales.path("de_DE.UTF-8");
    if (runCommand({"localedef", "--no-archive", "-i", "de_DE", "-f", "UTF-8", name}).status != 0) {
        GTEST_SKIP() << "this machine cannot make a locale with a decimal comma";
    }
    const ProgramOptions comma = withEnvironment({"LOCPATH=" + locales.name(), "LC_ALL=de_DE.UTF-8"});
    ASSERT_EQ(runCommand({"bash", "-c", "printf %.1f 1,5"}, comma).out, "1,5") << "the locale is not in force";
    EXPECT_EQ(configuredBytes(fullDocument(), {"--horizon_limit", "24.5"}, comma),
              configuredBytes(fullDocument(), {"--horizon_limit", "24.5"}));
}

TEST(ReproducibleBytes, DoNotDependOnTheWorkingDirectoryOrTheNamesOfTheFiles) {
    const TemporaryFolder folder;
    folder.write("a/in.xml", fullDocument());
    folder.write("b/other name.xml", fullDocument());
    ProgramOptions options;
    options.folder = folder.path("a");
    expectSilentSuccess(runVekoConfigure({"-i", "in.xml", "-o", "out.xml"}, options));
    options.folder = "/";
    expectSilentSuccess(runVekoConfigure(
        {"--output", folder.path("b/out \xc3\xa9.xml"), "--input=" + folder.path("b/other name.xml")}, options));
    EXPECT_EQ(folder.read("b/out \xc3\xa9.xml"), folder.read("a/out.xml"));
}
