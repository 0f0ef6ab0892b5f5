#ifndef POS_TESTS_OWNCONFIGURATION_H
#define POS_TESTS_OWNCONFIGURATION_H

#include "TemporaryFolder.h"

#include <string>

/**
 * A configuration on disk in parts, each of which a test may replace: the site and limits of the embedded one, with
 * data files of its own beside it, and a data model version of its own.
 */
struct OwnConfiguration {
    std::string datamver = "9.50";
    std::string configureVersion = "<configure_version>3.3.5</configure_version>";
    std::string defaultEpoch = "<default_epoch>2000.0</default_epoch>";
    std::string mapName = "data/map.xml";
    std::string vekoDefinition = "<veko_definition>data/bundle.xml</veko_definition>";
    /** Attributes of the optical axes. */
    std::string plateA = R"(x0="0" y0="0" r0="0")";
    std::string plateB = R"(x0="0" y0="0" r0="0")";
    std::string veko = R"(x0="0" y0="0" r0="0")";
    std::string mapAttributes = R"(focal_length="11724.24")";
    std::string distortion = R"(c1="202.841" c3="3.0191" c5="-0.0995944" c7="0.0")";
    /** Attributes of the bundle, without its data model version. */
    std::string bundle = R"(centre_x="0" centre_y="0" orientation="0")";
    std::string fibres = R"(<fibre id="304" pos_x="0" pos_y="0" fibre_name="C14"/>)";

    /** Writes configuration and data files into the folder. @return the name of the configuration file */
    std::string write(const TemporaryFolder& folder) const {
        const std::string version = " datamver=\"" + datamver + "\"";
        folder.write("conf/data/map.xml", "<focal_plane_map" + version + " " + mapAttributes +
                                              "><optical_axis><PLATE_A " + plateA + "/><PLATE_B " + plateB +
                                              "/><VEKO " + veko + "/></optical_axis><distortion_coefficients " +
                                              distortion + "/></focal_plane_map>");
        folder.write("conf/data/bundle.xml",
                     "<plate_definition" + version + " " + bundle + ">" + fibres + "</plate_definition>");
        return folder.write("conf/own.xml", "<configure" + version + ">" + configureVersion + defaultEpoch + R"(
<telescope><east_longitude>-17.881639</east_longitude><latitude>28.760583</latitude><height>2332.0</height>
<horizon_limit>5.0</horizon_limit><focal_plane_map>)" +
                                                mapName + R"(</focal_plane_map>
<rotator_low_limit>-135.0</rotator_low_limit><rotator_high_limit>135.0</rotator_high_limit>
<optimum_rotator_angle><plate_a>-25.0</plate_a><plate_b>25.0</plate_b></optimum_rotator_angle>
<rotator_offset>0.0</rotator_offset></telescope>)" +
                                                vekoDefinition + "</configure>");
    }
};

/** A bundle of ten fibres of every kind, in a document order of its own. */
inline std::string tenFibres() {
    return "<fibre id='304' pos_x='0' pos_y='0' fibre_name='C14' status='enabled'/>"
           "<fibre id='101' pos_x='-1' pos_y='0' fibre_name='1A' status='enabled'/>"
           "<fibre id='102' pos_x='0' pos_y='3' fibre_name='S01' status='enabled'/>"
           "<fibre id='103' pos_x='1' pos_y='0' fibre_name='2B' status='disabled'/>"
           "<fibre id='104' pos_x='-3' pos_y='0' fibre_name='S02' status='broken'/>"
           "<fibre id='105' pos_x='0' pos_y='-3' fibre_name='sky'/>"
           "<fibre id='200' pos_x='0' pos_y='0.5' fibre_name='C13' status='no such word'/>"
           "<fibre id='305' pos_x='0' pos_y='-0.5' fibre_name='3C' status='absent'/>"
           "<fibre id='400' pos_x='0.5' pos_y='0.5' fibre_name='2S' status='no prism'/>"
           "<fibre id='500' pos_x='2' pos_y='-1' fibre_name='12A' status='enabled'/>";
}

#endif
