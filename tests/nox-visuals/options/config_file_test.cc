// The file of --config, as the command line reads it.
#include "nox-visuals/options/config_file.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "nox-visuals/errors.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/options/command_line.h"

namespace {

// A command with one option of each sort, its file of options in a folder of the test's own.
class ConfigFile : public testing::Test {
 protected:
  ConfigFile() {
    std::string name = testing::TempDir() + "nox-config-XXXXXX";
    folder_ = mkdtemp(name.data());
    path_ = folder_ / "options";
    command_.option("WORD", &word_, "");
    command_.option("--number", &number_, "");
    command_.option("--many", &many_, "");
    command_.flag("--yes,!--no-yes", &yes_, "");
    command_.flag("--maybe{usual}", &maybe_, "");
    command_.option("--config", "");
  }
  ~ConfigFile() override { std::filesystem::remove_all(folder_); }

  void read(const std::string &text, const std::string &arguments = "") {
    std::ofstream(path_) << text;
    parse(arguments + " --config " + path_.string());
  }

  void parse(const std::string &arguments) {
    std::istringstream stream("program do " + arguments);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    EXPECT_TRUE(line_.parse(static_cast<int>(argv.size()), argv.data()));
  }

  // What is wrong with the file, without the file's name.
  std::string mistake(const std::string &text) {
    try {
      read(text);
    } catch (const nox::app::UsageError &error) {
      const std::string sentence = error.what();
      EXPECT_TRUE(sentence.starts_with(path_.string())) << sentence;
      return sentence.substr(path_.string().size());
    }
    return "";
  }

  std::filesystem::path folder_;
  std::filesystem::path path_;
  nox::app::CommandLine line_{"program", "", ""};
  nox::app::Command command_{line_.program(), "do", ""};
  std::string word_;
  std::uint64_t number_ = 0;
  std::vector<std::string> many_;
  bool yes_ = false;
  std::string maybe_;
};

TEST_F(ConfigFile, OptionsOfEverySort) {
  read("# a comment\n\n  number = 7 \r\nmany = a\nmany=b = c\nyes = true\nmaybe = 1,2,3");
  EXPECT_EQ(number_, 7U);
  EXPECT_EQ(many_, (std::vector<std::string>{"a", "b = c"}));
  EXPECT_TRUE(yes_);
  EXPECT_EQ(maybe_, "1,2,3");
}

TEST_F(ConfigFile, NoMeansNo) {
  read("no-yes = true", "--yes");
  EXPECT_TRUE(yes_);
  yes_ = true;
  read("no-yes = true");
  EXPECT_FALSE(yes_);
}

TEST_F(ConfigFile, TheCommandLineHolds) {
  read("number = 7\nmany = a", "--number 3 --many x --many y");
  EXPECT_EQ(number_, 3U);
  EXPECT_EQ(many_, (std::vector<std::string>{"x", "y"}));
}

TEST_F(ConfigFile, MistakesAreNamedByTheirLine) {
  EXPECT_EQ(mistake("number = 1\nnumbre = 2\n"), ":2: no option 'numbre'");
  EXPECT_EQ(mistake("\n\nnumber\n"), ":3: expected option = value");
  EXPECT_EQ(mistake("number = x").substr(0, 4), ":1: ");
  EXPECT_EQ(mistake("config = other"), ":1: no option 'config'");
  EXPECT_EQ(mistake("WORD = x"), ":1: no option 'WORD'");
  EXPECT_EQ(mistake("number = 1\nnumber = 2").substr(0, 4), ":2: ");
}

TEST_F(ConfigFile, AMissingFileIsAMistake) {
  EXPECT_THROW(parse("--config " + path_.string()), nox::app::UsageError);
}

}  // namespace
