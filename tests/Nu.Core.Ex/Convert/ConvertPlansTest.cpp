// Every pair's plan at every level against the committed tests/Golden/ConvertPlans.txt, so that
// every change of path shows as a diff of that file. After a deliberate change, regenerate it with
//   NU_WRITE_GOLDEN=1 build/release/tests/NuCoreExTests --gtest_filter='ConvertPlans.*'
#include <Nu.Core.Ex/Convert/PlanText.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

using namespace Nu::Detail;

namespace {

bool IsBayer(int pixelType) { return pixelType >= Nu::EPixelType::Bayer1 && pixelType <= Nu::EPixelType::Bayer4; }

std::vector<std::string> PlanLines() {
  std::vector<std::string> lines = {
      "# The plan of every pair at every level (Nu.Core.Ex/Convert/Plan.h): order, value kernel and",
      "# move kernel with the level their code is compiled for, pixels per step through the L1",
      "# buffer, and from what size the target streams and the source is fetched ahead (in the",
      "# streaming blocks as well where it says so). Bayer formats plan as Lum. Runs under " + std::to_string(FusedFrom) + " pixels,",
      "# and runs that overlap, take the forward passes.",
      "# Written by tests/Nu.Core.Ex/Convert/ConvertPlansTest.cpp; do not edit by hand."};
  for (SFormatIds const& trg : AllFormats)
    for (SFormatIds const& src : AllFormats)
      if (!IsBayer(trg.PixelType) && !IsBayer(src.PixelType))
        for (ELevel level : AllLevels)
          lines.push_back(PlanLine(trg.PixelType, trg.DataType, src.PixelType, src.DataType, level));
  return lines;
}

}  // namespace

TEST(ConvertPlans, EveryPairAtEveryLevelMatchesTheGoldenFile) {
  std::vector<std::string> const lines = PlanLines();
  if (std::getenv("NU_WRITE_GOLDEN") != nullptr) {
    std::ofstream out(NU_GOLDEN_FILE);
    for (std::string const& line : lines) out << line << '\n';
    GTEST_SKIP() << "wrote " << NU_GOLDEN_FILE;
  }
  std::ifstream in(NU_GOLDEN_FILE);
  ASSERT_TRUE(in) << "cannot read " << NU_GOLDEN_FILE;
  std::vector<std::string> golden;
  for (std::string line; std::getline(in, line);) golden.push_back(line);
  int shown = 0;
  for (std::size_t i = 0; i < std::max(lines.size(), golden.size()) && shown < 20; ++i) {
    std::string const want = i < golden.size() ? golden[i] : "(none)", got = i < lines.size() ? lines[i] : "(none)";
    if (want != got) {
      ADD_FAILURE() << "line " << i + 1 << "\n golden: " << want << "\n   plan: " << got;
      ++shown;
    }
  }
}
