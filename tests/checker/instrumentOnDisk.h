#ifndef POS_TESTS_INSTRUMENTONDISK_H
#define POS_TESTS_INSTRUMENTONDISK_H

#include "TemporaryFolder.h"
#include "Version.h"
#include "checkInstrument.h"
#include "fieldDefinition.h"

#include <QFile>
#include <gtest/gtest.h>
#include <string>

/**
 * The documents of the built-in instrument, each of which a test may change, as files beside each other. The
 * configuration names the built-in plates.
 */
struct InstrumentOnDisk {
    std::string configuration = replaced(replaced(builtIn("configure.xml"), ">:/focal", ">focal"), ">:/VEKO", ">VEKO");
    std::string map = builtIn("focal_plane_map.xml");
    std::string bundle = builtIn("VEKO.xml");
    std::string plateA = "none";

    /** Writes them. @return the name of the configuration */
    std::string write(const TemporaryFolder& folder) const {
        folder.write("focal_plane_map.xml", map);
        folder.write("VEKO.xml", bundle);
        folder.write("PLATE_A.xml", plateA);
        return folder.write("configure.xml", configuration);
    }

    /** Replaces a text where it stands first. */
    void replace(const std::string& text, const std::string& replacement) {
        for (std::string* document : {&configuration, &map, &bundle}) {
            const std::size_t begin = document->find(text);
            if (begin != std::string::npos) {
                document->replace(begin, text.size(), replacement);
                return;
            }
        }
        ADD_FAILURE() << text << " is in no document";
    }

    static std::string builtIn(const std::string& name) {
        QFile file(":/" + QString::fromStdString(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll().toStdString();
    }
};

/** With an absent fibre, 1 ("C01"), and a disabled one, 2 ("1B"), beside the broken ones. */
inline InstrumentOnDisk instrumentWithUnusableFibres() {
    InstrumentOnDisk instrument;
    instrument.replace(R"(fibre_name="C01" type="Spectrograph" status="enabled")",
                       R"(fibre_name="C01" type="Spectrograph" status="absent")");
    instrument.replace(R"(fibre_name="1B" type="Spectrograph" status="enabled")",
                       R"(fibre_name="1B" type="Spectrograph" status="disabled")");
    return instrument;
}

/** Checks an instrument as a new process does. */
inline pos::CheckedInstrument checkedAnew(const InstrumentOnDisk& instrument, const TemporaryFolder& folder,
                                          double fieldRadius = 0.0) {
    pos::datamver.clear();
    return pos::checkInstrument(instrument.write(folder), fieldRadius);
}

#endif
