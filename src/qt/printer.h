// Printers of the desktop, or a PDF file where there is none.

#pragma once

#include "platform/printer.h"
#include "platform/settings.h"
#include "qt/runner.h"

#include <memory>

class QPrinter;

namespace quillon {

class QtPrinter : public Printer {
public:
    /// Both must outlive the printer. Pages are printed in the look that the settings tell.
    QtPrinter(Runner& theRunner, const Settings& theSettings);
    ~QtPrinter() override;

    std::optional<int> ShowDialog(const std::string& jobName) override;
    void SetCopies(int count) override { copies = count; }
    double Width() const override;
    double Height() const override;

    /// A printer or file that refuses the job is a path/file-access Fault.
    void Print(const std::vector<Drawing>& pages) override;

private:
    QPrinter& Device() const;

    Runner& runner;
    const Settings& settings;
    int copies = 1;
    mutable std::unique_ptr<QPrinter> device;  // made on first use: asking for printers takes time
};

}  // namespace quillon
