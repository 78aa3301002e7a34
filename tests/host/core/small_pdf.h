// PDF documents of one word a page, and the words of any.
#pragma once

#include <string>
#include <vector>

namespace fax::host {

std::string pdf_of(std::vector<std::string> const &words);
// The same, locked by a password.
std::string locked_pdf_of(std::vector<std::string> const &words);

// What pdftotext finds, page by page, without blanks around it; empty where it cannot read the document.
std::vector<std::string> words_in(std::string const &pdf);

}  // namespace fax::host
