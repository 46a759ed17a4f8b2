#include "conversion_fixture.h"

#include <fmt/format.h>

#include <filesystem>

#include "profile/profile_trace.h"

namespace kiv::test {

void ConversionTest::write(std::string_view name, std::string_view bytes) const {
  ASSERT_TRUE(write_file(dir_ / name, bytes));
}

converted ConversionTest::convert(std::string_view recording, std::string_view raw) {
  convert::conversion wanted;
  wanted.recording = dir_ / "recording";
  write("recording", recording);
  if (!raw.empty()) {
    wanted.raw = dir_ / "raw";
    write("raw", raw);
  }
  wanted.directory = dir_ / "run";
  wanted.run_id = "RUN";
  wanted.pid = 4711;
  wanted.start = moment{1'700'000'000, 250'000'000};
  std::filesystem::remove_all(wanted.directory);

  const convert::conversion_result result = convert::convert_recording(wanted, [](auto) {});
  converted made;
  made.how = result.how;
  for (const std::string& message : result.messages) made.messages += message + "\n";
  made.has_trace = std::filesystem::exists(wanted.directory);
  std::string error;
  if (made.has_trace) {
    EXPECT_TRUE(profile_trace(dir_ / "run/kiv.4711.kivhdr", made.trace, error)) << error;
  }
  return made;
}

amount sum(const profile& of, figure which) {
  amount all;
  for (const block_group& group : of.groups) all += group[which];
  return all;
}

amount leaked(const profile& of) {
  amount all;
  for (const block_group& group : of.groups) all += group.leaked();
  return all;
}

std::map<std::string, std::string> by_place(const profile& of) {
  std::map<std::string, amount> made, lost;
  for (const block_group& group : of.groups) {
    std::string place = " | " + of.lines[group.line];
    for (std::uint32_t path = group.path; path != 0; path = of.paths[path].parent) {
      const profile_function& function = of.functions[of.paths[path].function];
      if (function.object != "(process internal)") place.insert(0, " " + function.name);
    }
    made[place] += group[figure::made];
    lost[place] += group.leaked();
  }
  std::map<std::string, std::string> texts;
  for (const auto& [place, of_place] : made) {
    const amount& of_lost = lost[place];
    texts[place.substr(1)] = fmt::format("made {}:{} leaked {}:{}", of_place.blocks, of_place.bytes,
                                         of_lost.blocks, of_lost.bytes);
  }
  return texts;
}

std::vector<std::string> losses(const profile& of) {
  std::vector<std::string> names;
  for (const loss& one : of.losses) names.push_back(one.what);
  return names;
}

}  // namespace kiv::test
