// What must cross the I2C bus, byte for byte: bus.txt, in sections. A line there names the device and then
// its transfers, "20: 12 26; 13 0C"; "00*240" stands for 240 such bytes.
#pragma once

#include <fstream>
#include <initializer_list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace veltra {

using BusLines = std::vector<std::string>;

class BusText {
 public:
  BusText() {
    std::ifstream file(VELTRA_BUS_TEXT);
    BusLines* section = nullptr;
    for (std::string line; std::getline(file, line);) {
      if (line.empty() || line[0] == '#') continue;
      if (line[0] == '[') {
        section = &sections_[line.substr(1, line.size() - 2)];
        continue;
      }
      std::istringstream transfers(line.substr(4));
      for (std::string transfer; std::getline(transfers, transfer, ';');)
        section->push_back(line.substr(0, 3) + Bytes(transfer));
    }
  }

  // The transfers of these sections in the form in which they are recorded: "20: 12 26".
  BusLines Of(std::initializer_list<std::string> names) const {
    BusLines lines;
    for (const std::string& name : names) {
      const BusLines& section = sections_.at(name);
      lines.insert(lines.end(), section.begin(), section.end());
    }
    return lines;
  }

 private:
  static std::string Bytes(const std::string& transfer) {
    std::istringstream words(transfer);
    std::string bytes;
    for (std::string word; words >> word;) {
      const size_t star = word.find('*');
      for (int times = star == word.npos ? 1 : std::stoi(word.substr(star + 1)); times > 0; --times)
        for (size_t n = 0; n + 1 < std::min(star, word.size() + 1); n += 2) bytes += " " + word.substr(n, 2);
    }
    return bytes;
  }

  std::map<std::string, BusLines> sections_;
};

}  // namespace veltra
