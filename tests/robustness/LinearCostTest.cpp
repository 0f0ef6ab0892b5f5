#include "hostileRun.h"
#include "measuredRun.h"
#include "xmlAttacks.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

// What is accepted costs in proportion to its size: counted in allocations, most of which are nodes of the document's
// tree, and in memory, never in time.

namespace {

std::size_t allocations = 0;

} // namespace

void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace {

class LinearCost : public HostileRun {
protected:
    LinearCost() {
        useThreeFibres();
    }

    /** How many allocations a run takes that must succeed. */
    double allocationsOf(const std::string& document) {
        const std::size_t before = allocations;
        const RunEnd end = runSmall(document);
        const std::size_t after = allocations;
        EXPECT_EQ(end.kind, RunEnd::Kind::Configured) << end.message;
        judge(end, "a run");
        return static_cast<double>(after - before);
    }
};

/** An example with more at the beginning of its field. */
std::string withInField(const std::string& content) {
    std::string document = example("sombrero_south");
    const std::string field = R"(Dec_d="-11.623054">)";
    return document.insert(document.find(field) + field.size(), content);
}

/** The one field of an example, many times. */
std::string withFields(int count) {
    std::string document = example("sombrero_south");
    const std::size_t begin = document.find("<field ");
    const std::size_t end = document.find("</field>") + 8;
    const std::string field = document.substr(begin, end - begin);
    return document.replace(begin, end - begin, times(count, field));
}

struct Growth {
    std::string name;
    std::string (*document)(int size);
    int size;
};

void PrintTo(const Growth& value, std::ostream* stream) {
    *stream << value.name;
}

const std::vector<Growth> kGrowths = {
    {"siblings", [](int size) { return withInField(times(size, "<a/>")); }, 2000},
    {"attributes", [](int size) { return withInField(times(size, "<a" + numbered(100, " a#='1'") + "/>")); }, 50},
    {"texts", [](int size) { return withInField(times(size, "x<a/>")); }, 2000},
    {"comments", [](int size) { return withInField(times(size, "<!--x-->")); }, 2000},
    {"instructions", [](int size) { return withInField(times(size, "<?x?>")); }, 2000},
    {"instructions before text", [](int size) { return withInField(times(size, "<?x?>y")); }, 2000},
    {"levels", [](int size) { return withInField(times(size, "<a>") + times(size, "</a>")); }, 200},
    {"groups", [](int size) { return withInField(times(size, "<group>") + times(size, "</group>")); }, 200},
    {"targets",
     [](int size) {
         return withInField(times(size, R"(<target targuse="R" targra="190.123456" targdec="-11.654321"/>)"));
     },
     2000},
    {"masks",
     [](int size) {
         return withInField("<avoidance_list>" + times(size, R"(<mask RA_d="190.123456" Dec_d="-11.654321"/>)") +
                            "</avoidance_list>");
     },
     2000},
    {"observations that are none", [](int size) { return withInField(times(size, "<observation><a/></observation>")); },
     1000},
    {"fields", withFields, 20}};

class Growing : public LinearCost, public testing::WithParamInterface<Growth> {};

} // namespace

TEST_P(Growing, TwiceAsMuchAgainTakesAsManyAllocationsAgain) {
    // Tables double now and then, which is not quite even.
    constexpr double kUnevenness = 0.02;
    const Growth& growth = GetParam();
    allocationsOf(growth.document(1)); // for what is set up only once
    const double once = allocationsOf(growth.document(growth.size));
    const double twice = allocationsOf(growth.document(2 * growth.size));
    const double fourTimes = allocationsOf(growth.document(4 * growth.size));
    EXPECT_GE(twice - once, growth.size);
    EXPECT_NEAR((fourTimes - twice) / (twice - once), 2.0, kUnevenness);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Growing, testing::ValuesIn(kGrowths), [](const auto& tested) {
    std::string name = tested.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

TEST_F(LinearCost, FibresOfTheBundle) {
    const std::string document = example("sombrero_south");
    const auto allocationsWith = [&](int fibres) {
        put("bundle.xml", "<plate_definition centre_x='0' centre_y='0' orientation='0' datamver='8.00'>" +
                              numbered(fibres, "<fibre id='1#' pos_x='0.#' pos_y='-20' fibre_name='1A'/>") +
                              "<fibre id='304' pos_x='0' pos_y='-20' fibre_name='C14'/></plate_definition>");
        return allocationsOf(document);
    };
    allocationsWith(1);
    const double once = allocationsWith(100);
    const double twice = allocationsWith(200);
    const double fourTimes = allocationsWith(400);
    EXPECT_NEAR((fourTimes - twice) / (twice - once), 2.0, 0.02);
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(LinearCost, MemoryOfSiblingsIsBelow250BytesEach) {
    const auto bytesOf = [this](int siblings) {
        const std::string input = folder_.path("in.xml");
        put("in.xml", withInField(times(siblings, "<abcdefghijkl/>")));
        const MeasuredRun run = measuredRun({"-i", input, "-o", folder_.path("out.xml")});
        EXPECT_EQ(run.result.status, 0) << run.result.err;
        return run.mebibytes * 1024 * 1024;
    };
    const double few = bytesOf(100'000);
    const double many = bytesOf(700'000);
    EXPECT_GT((many - few) / 600'000, 100);
    EXPECT_LT((many - few) / 600'000, 250);
}
#endif
