#include "hostileRun.h"

#include "Version.h"
#include "angles.h"
#include "schemaCheck.h"
#include "veko_configure.h"
#include "xmlStructure.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

const std::string kOldOutput = "the old output\n";
/** How many breaches are told in full. */
constexpr int kToldBreaches = 5;

/** Takes what is printed on a stream until the object goes. */
class Captured {
public:
    explicit Captured(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(text_.rdbuf())) {}
    ~Captured() {
        stream_.rdbuf(before_);
    }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;
    Captured(Captured&&) = delete;
    Captured& operator=(Captured&&) = delete;

    std::string text() const {
        return text_.str();
    }

private:
    std::ostream& stream_;
    std::ostringstream text_;
    std::streambuf* before_;
};

} // namespace

SmallInstrument smallInstrument() {
    return {R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- a small instrument -->
<configure datamver="8.00">
 <configure_version>3.3.5</configure_version>
 <default_epoch>2016.0</default_epoch>
 <telescope>
  <east_longitude>-17.881639</east_longitude>
  <latitude>28.760583</latitude>
  <height>2332.0</height>
  <horizon_limit>5.0</horizon_limit>
  <focal_plane_map>map.xml</focal_plane_map>
  <rotator_low_limit>-135.0</rotator_low_limit>
  <rotator_high_limit>135.0</rotator_high_limit>
  <optimum_rotator_angle>
   <plate_a>-25.0</plate_a>
   <plate_b>25.0</plate_b>
  </optimum_rotator_angle>
  <rotator_offset>0.0</rotator_offset>
 </telescope>
 <veko_definition>bundle.xml</veko_definition>
</configure>
)",
            R"(<?xml version="1.0" encoding="UTF-8"?>
<focal_plane_map datamver="8.00" focal_length="11724.24">
 <optical_axis>
  <PLATE_A x0="0.0" y0="0.0" r0="0.0"/>
  <PLATE_B x0="0.0" y0="0.0" r0="0.0"/>
  <VEKO x0="0.0" y0="0.0" r0="0.0"/>
 </optical_axis>
 <distortion_coefficients c1="202.841" c3="3.0191" c5="-0.0995944" c7="0.0"/>
</focal_plane_map>
)",
            R"(<?xml version="1.0" encoding="UTF-8"?>
<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00">
 <fibre id="101" pos_x="-1.0" pos_y="-20.0" fibre_name="1A" status="enabled"/>
 <fibre id="102" pos_x="0.0" pos_y="-17.0" fibre_name="S01" status="enabled"/>
 <fibre id="103" pos_x="1.0" pos_y="-20.0" fibre_name="2B" status="disabled"/>
 <fibre id="104" pos_x="-3.0" pos_y="-20.0" fibre_name="S02" status="broken"/>
 <fibre id="105" pos_x="0.0" pos_y="-23.0" fibre_name="sky"/>
 <fibre id="193" pos_x="0.0" pos_y="-19.3" fibre_name="C10" status="enabled"/>
 <fibre id="304" pos_x="0.0" pos_y="-20.0" fibre_name="C14" status="enabled" slit_entry="8-1"/>
 <fibre id="305" pos_x="0.0" pos_y="-20.5" fibre_name="3C" status="absent"/>
 <fibre id="400" pos_x="0.5" pos_y="-19.5" fibre_name="2S" status="no prism"/>
 <fibre id="500" pos_x="2.0" pos_y="-21.0" fibre_name="12A" status="no such word"/>
</plate_definition>
)"};
}

std::string smallInfoConfiguration() {
    return R"(; a small instrument
configure_version "3.3.5"
default_epoch "2016.0"
telescope
{
  east_longitude "-17.881639"
  latitude "28.760583"
  height "2332.0"
  horizon_limit "5.0"
  focal_plane_map "map.xml"
  rotator_low_limit "-135.0"
  rotator_high_limit "135.0"
  optimum_rotator_angle
  {
    plate_a "-25.0"
    plate_b "25.0"
  }
  rotator_offset "0.0"
}
veko_definition "bundle.xml"
)";
}

std::vector<std::string> exampleNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(std::string(POS_SOURCE_FOLDER) + "/examples")) {
        if (entry.path().extension() == ".xml") {
            names.push_back(entry.path().stem());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string example(const std::string& name) {
    return readBytes(std::string(POS_SOURCE_FOLDER) + "/examples/" + name + ".xml");
}

HostileRun::HostileRun() {
    const SmallInstrument instrument = smallInstrument();
    folder_.write("configure.xml", instrument.configuration);
    folder_.write("configure.info", smallInfoConfiguration());
    folder_.write("map.xml", instrument.map);
    folder_.write("bundle.xml", instrument.bundle);
    folder_.write("out.xml", kOldOutput);
}

void HostileRun::SetUp() {
    ProcessWideState::SetUp();
}

void HostileRun::TearDown() {
    EXPECT_EQ(breachCount_, 0) << "of " << cases_ << " cases, beginning with\n" << breaches_;
    RecordProperty("cases", cases_);
    RecordProperty("configured", configured_);
    ProcessWideState::TearDown();
}

void HostileRun::useThreeFibres() const {
    put("bundle.xml", R"(<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00">
 <fibre id="102" pos_x="0.0" pos_y="-17.0" fibre_name="S01" status="enabled"/>
 <fibre id="193" pos_x="0.0" pos_y="-19.3" fibre_name="C10" status="broken"/>
 <fibre id="304" pos_x="0.0" pos_y="-20.0" fibre_name="C14" status="enabled"/>
</plate_definition>
)");
}

void HostileRun::put(const std::string& file, const std::string& content) const {
    fs::remove(folder_.path(file));
    folder_.write(file, content);
}

RunEnd HostileRun::run(const std::string& document, const std::function<pos::PosConfig()>& config) {
    const std::string input = folder_.path("in.xml");
    put("in.xml", document);
    pos::datamver.clear();
    const Captured out(std::cout);
    const Captured err(std::cerr);
    RunEnd end;
    try {
        const int result =
            veko_configure(config(), input, folder_.path("out.xml"), 0.0, 100.0, 0.0, pos::degreesToRadians(65.0));
        if (result == 0 || result == 1) {
            end.kind = result == 0 ? RunEnd::Kind::Configured : RunEnd::Kind::Refused;
        }
        end.message = err.text();
    } catch (const std::exception& error) {
        end.kind = err.text().empty() ? RunEnd::Kind::Thrown : RunEnd::Kind::Other;
        end.message = error.what();
    }
    end.out = out.text();
    return end;
}

RunEnd HostileRun::runSmall(const std::string& document) {
    RunEnd end = run(document, [this] { return smallConfig(); });
    end.instrumentIsWhole = false;
    return end;
}

pos::PosConfig HostileRun::smallConfig() const {
    return {"configure_version", "3.3.5", folder_.path("configure.xml").c_str(), pos::PosConfig::XML};
}

pos::PosConfig HostileRun::infoConfig() const {
    return {"configure_version", "3.3.5", folder_.path("configure.info").c_str(), pos::PosConfig::INFO};
}

void HostileRun::judge(const RunEnd& end, const std::string& caseName) {
    ++cases_;
    const std::string found = breach(end);
    if (!found.empty() && ++breachCount_ <= kToldBreaches) {
        breaches_ += caseName.substr(0, 200) + ": " + found + " (" + end.message.substr(0, 200) + ")\n";
    }
    if (end.kind == RunEnd::Kind::Configured) {
        ++configured_;
        put("out.xml", kOldOutput);
    }
}

/** What is wrong with an end; nothing where it keeps the promise. */
std::string HostileRun::breach(const RunEnd& end) {
    if (!end.out.empty()) {
        return "something was printed";
    }
    if (end.kind == RunEnd::Kind::Other) {
        return "a strange end";
    }
    if (end.kind == RunEnd::Kind::Configured) {
        try {
            static_cast<void>(pos::loadXmlFile(folder_.path("out.xml")));
        } catch (const std::exception& error) {
            return std::string("the output does not load: ") + error.what();
        }
        if (!end.message.empty()) {
            return "a message beside an output";
        }
        return end.instrumentIsWhole ? againstOutput(folder_.read("in.xml"), folder_.read("out.xml")) : "";
    }
    if (end.message.empty()) {
        return "no message";
    }
    return folder_.read("out.xml") == kOldOutput ? "" : "the old output is not whole";
}
