// What the print dialog starts from.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "host/core/command_line.h"
#include "host/core/document.h"
#include "host/core/ppd_file.h"
#include "host/core/queues.h"
#include "host/core/server.h"

namespace fax::host {

struct DialogRequest {
  Server server;
  std::vector<Queue> queues;
  Queue queue;                   // the one to show first
  std::shared_ptr<PpdFile> ppd;  // of that queue, marked; empty when it has none
  Document document;
  CommandLine command_line;
  std::filesystem::path application;  // the application wrapper
};

}  // namespace fax::host
