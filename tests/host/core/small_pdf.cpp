#include "small_pdf.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fax::host {

namespace {

// A file that is gone with this object.
class Scratch {
public:
  explicit Scratch(std::string const &bytes = "") {
    int const file = mkstemp(path_.data());
    if (file >= 0) close(file);
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~Scratch() { std::filesystem::remove(path_); }
  std::string const &path() const { return path_; }

private:
  std::string path_ = testing::TempDir() + "/pdf-XXXXXX";
};

std::string said_by(std::string const &command) {
  std::string said;
  std::FILE *const pipe = popen(command.c_str(), "r");
  char buffer[4096];
  while (std::size_t const got = std::fread(buffer, 1, sizeof buffer, pipe)) said.append(buffer, got);
  return pclose(pipe) == 0 ? said : "";
}

}  // namespace

std::string pdf_of(std::vector<std::string> const &words) {
  std::vector<std::string> objects{"<</Type/Catalog/Pages 2 0 R>>", "",
                                   "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>"};
  std::string kids;
  for (auto const &word : words) {
    std::string const stream = "BT /F 40 Tf 100 500 Td (" + word + ") Tj ET";
    objects.push_back("<</Length " + std::to_string(stream.size()) + ">>stream\n" + stream + "\nendstream");
    objects.push_back("<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Resources<</Font<</F 3 0 R>>>>/Contents " +
                      std::to_string(objects.size()) + " 0 R>>");
    kids += std::to_string(objects.size()) + " 0 R ";
  }
  objects[1] = "<</Type/Pages/Kids[" + kids + "]/Count " + std::to_string(words.size()) + ">>";
  std::string pdf = "%PDF-1.4\n";
  std::string table;
  for (std::size_t at = 0; at < objects.size(); ++at) {
    char entry[32];
    std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", pdf.size());
    table += entry;
    pdf += std::to_string(at + 1) + " 0 obj" + objects[at] + "endobj\n";
  }
  std::string const count = std::to_string(objects.size() + 1);
  std::string const start = std::to_string(pdf.size());
  return pdf + "xref\n0 " + count + "\n0000000000 65535 f \n" + table + "trailer<</Root 1 0 R/Size " + count +
         ">>\nstartxref\n" + start + "\n%%EOF\n";
}

std::string locked_pdf_of(std::vector<std::string> const &words) {
  Scratch const open(pdf_of(words));
  return said_by("gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=pdfwrite -sOwnerPassword=owner -sUserPassword=user "
                 "-dEncryptionR=3 -dKeyLength=128 -sOutputFile=- " + open.path());
}

std::vector<std::string> words_in(std::string const &pdf) {
  Scratch const file(pdf);
  std::string rest = said_by("pdftotext " + file.path() + " - 2>/dev/null");
  std::vector<std::string> words;
  for (std::size_t end; (end = rest.find('\f')) != std::string::npos; rest.erase(0, end + 1)) {
    std::string const page = rest.substr(0, end);
    std::size_t const first = page.find_first_not_of(" \n");
    words.push_back(first == std::string::npos ? "" : page.substr(first, page.find_last_not_of(" \n") - first + 1));
  }
  return words;
}

}  // namespace fax::host
