// What the panel and the fax dialog do without showing anything: addresses of printers, and the values of a job.
#pragma once
#import "bench/book_dialog.h"

#include "bench/report.h"

namespace fax::bench {

// 30 destinations and the other values of a fax into the settings of a job. std::runtime_error when they are not there.
void measure_job(BookDialog const &dialog, Report &report);

// The address of a printer at USB, and of one whose address is in its URI. std::runtime_error for a wrong one.
void measure_addresses(Report &report);

}  // namespace fax::bench
