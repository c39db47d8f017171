// The printer: its dialog, the size of its page, and print jobs.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quillon {

class Drawing;

class Printer {
public:
    virtual ~Printer() = default;

    /// Shows the print dialog for jobs of that name and returns the copies asked for, nothing if
    /// it was cancelled.
    virtual std::optional<int> ShowDialog(const std::string& jobName) = 0;

    /// What the dialog offers the next time.
    virtual void SetCopies(int copies) = 0;

    /// The paper, in twips.
    virtual double Width() const = 0;
    virtual double Height() const = 0;

    /// Prints the pages, drawn in twips, as one job.
    virtual void Print(const std::vector<Drawing>& pages) = 0;
};

}  // namespace quillon
