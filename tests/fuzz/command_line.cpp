// Argument vectors that the bytes choose. Every name that they may hold stays in a folder of the fuzzer's own.

#include "CommandLine.h"
#include "Version.h"
#include "checkedRun.h"
#include "documentFromBytes.h"
#include "xmlStructure.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

namespace fs = std::filesystem;

constexpr const char* kOptions[] = {"-i",
                                    "--input",
                                    "--input=",
                                    "-iin.xml",
                                    "-o",
                                    "--output",
                                    "--output=",
                                    "-oout.xml",
                                    "-c",
                                    "--config_file",
                                    "-cown.xml",
                                    "--config_file=own.xml",
                                    "--epoch",
                                    "--epoch=",
                                    "--ha",
                                    "--ha=",
                                    "--pressure",
                                    "--pressure=",
                                    "--horizon_limit",
                                    "--horizon_limit=",
                                    "-h",
                                    "--help",
                                    "-v",
                                    "--version",
                                    "--",
                                    "-",
                                    "---",
                                    "--inp",
                                    "--e",
                                    "--h",
                                    "-x",
                                    "--no_such",
                                    "-io",
                                    "-vh",
                                    "--Input",
                                    "--config",
                                    "/i",
                                    ""};
constexpr const char* kNames[] = {"in.xml",
                                  "out.xml",
                                  "own.xml",
                                  "missing.xml",
                                  "folder",
                                  "folder/out.xml",
                                  "out.xml/",
                                  "missing/out.xml",
                                  ":/configure.xml",
                                  ":/missing",
                                  "./out.xml",
                                  "new.xml",
                                  "text",
                                  "\xff\xfe",
                                  "%1",
                                  "folder/../in.xml",
                                  "",
                                  "."};
constexpr const char* kNumbers[] = {"0",    "2027.5", "2016",  "-90",       "25",    "1.5",    "-1.5",  "100",
                                    "770",  "1e400",  "nan",   "-inf",      "1e300", "1e-320", "0x1p3", "1,5",
                                    "1.5 ", " 1",     "+2016", "2460000.5", "1e",    ""};

/** Bytes of the fuzzer's own, which name nothing outside the working directory. */
std::string ownText(FuzzedDataProvider& bytes) {
    std::string text = bytes.ConsumeRandomLengthString(24);
    // An argument ends at its first NUL.
    text.resize(std::min(text.size(), text.find('\0')));
    std::replace(text.begin(), text.end(), '/', '_');
    return text;
}

std::string argument(FuzzedDataProvider& bytes) {
    switch (bytes.ConsumeIntegralInRange<int>(0, 6)) {
    case 0:
        return ownText(bytes);
    case 1:
        return bytes.PickValueInArray(kOptions) + ownText(bytes);
    case 2:
        return std::string(bytes.PickValueInArray(kOptions)) + bytes.PickValueInArray(kNumbers);
    case 3:
        return bytes.PickValueInArray(kNumbers);
    case 4:
        return bytes.PickValueInArray(kNames);
    default:
        return bytes.PickValueInArray(kOptions);
    }
}

/** The arguments of an ordinary run, and others before, between and behind them. */
std::vector<std::string> arguments(FuzzedDataProvider& bytes) {
    std::vector<std::string> all = {"veko_configure"};
    if (bytes.ConsumeBool()) {
        all.insert(all.end(), {"-c", "own.xml", "-i", "in.xml", "-o", "out.xml"});
    }
    for (int count = bytes.ConsumeIntegralInRange<int>(0, 12); count > 0; --count) {
        const auto place = bytes.ConsumeIntegralInRange<std::ptrdiff_t>(1, std::ssize(all));
        all.insert(all.begin() + place, argument(bytes));
    }
    return all;
}

/** The regular files at and below the working directory. */
std::map<std::string, std::string> files() {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        if (entry.is_regular_file()) {
            all[entry.path().string()] = bytesOf(entry.path().string());
        }
    }
    return all;
}

/** Puts the files back, and takes others away. */
void restore(const std::map<std::string, std::string>& before, const std::map<std::string, std::string>& after) {
    for (const auto& [name, bytes] : after) {
        if (!before.contains(name)) {
            fs::remove(name);
        }
    }
    for (const auto& [name, bytes] : before) {
        const auto now = after.find(name);
        if (now == after.end() || now->second != bytes) {
            writeBytes(name, bytes);
        }
    }
}

/** A folder of the fuzzer's own as the working directory, with all that an ordinary run needs. */
const std::map<std::string, std::string>& filesToBeginWith() {
    static const RunFolder folder;
    static const std::map<std::string, std::string> before = [] {
        fs::rename(folder.configuration(), folder.path("own.xml"));
        fs::rename(folder.path("conf/data"), folder.path("data"));
        fs::rename(folder.output(), folder.path("out.xml"));
        fs::create_directory(folder.path("folder"));
        writeBytes(folder.path("text"), "no document\n");
        fs::current_path(folder.path(""));
        return files();
    }();
    return before;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto& before = filesToBeginWith();
    FuzzedDataProvider bytes(data, size);
    const std::vector<std::string> texts = arguments(bytes);
    std::vector<const char*> argv;
    std::transform(texts.begin(), texts.end(), std::back_inserter(argv), [](const auto& text) { return text.c_str(); });
    argv.push_back(nullptr);
    pos::datamver.clear();
    const int status = exitStatus([&] { return pos::runCommandLine(static_cast<int>(texts.size()), argv.data()); });
    const auto after = files();
    if (status != 0) {
        require(after == before, "a run that fails changes no file");
    } else {
        for (const auto& [name, content] : after) {
            const auto older = before.find(name);
            if (older == before.end() || older->second != content) {
                pos::datamver.clear();
                require(endsOrExplains([&, file = name] { pos::loadXmlFile(file); }), "what was written is a document");
            }
        }
    }
    restore(before, after);
    return 0;
}
