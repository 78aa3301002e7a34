// What the print dialog starts from.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "host/core/command_line.h"
#include "host/core/document.h"
#include "host/core/memory.h"
#include "host/core/ppd_file.h"
#include "host/core/queues.h"
#include "host/core/server.h"

namespace fax::host {

struct DialogRequest {
  Server server;
  std::vector<Queue> queues;
  Queue queue;                   // the one to show first
  std::shared_ptr<PpdFile> ppd;  // of that queue, marked; empty when it has none
  Document document;  // what is sent; the first one, until Print has put together all of them
  CommandLine command_line;
  std::filesystem::path application;  // the application wrapper
  std::vector<Document> further{};    // behind the first one, in their order
  Memory memory{};                    // of earlier uses
};

}  // namespace fax::host
