// The streams that reports go to, and the end of a run.
#include "as/asStreams.h"
#include "tests/unit/support.h"

namespace {

using Streams = RunTest;

TEST_F(Streams, NewRunAttachesStandardOutput) {
    standard_output.attach(-1);
    streams_new_run();
    EXPECT_TRUE(standard_output.is_open());
}

TEST_F(Streams, BannerNamesProgramProcessorAndVersion) {
    put_banner(standard_output);
    EXPECT_EQ(take_output(), "HXzirpa - ZIRPA Absolute crossassembler, Version 1.3");
}

TEST_F(Streams, EndOfARunCarriesItsStatus) {
    EXPECT_EQ(end_status([] { end_run(0); }), 0);
    EXPECT_EQ(end_status([] { end_run(255); }), 255);
}

} // namespace
