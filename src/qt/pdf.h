// What the toolkit leaves out of a PDF file.

#pragma once

#include <QByteArray>
#include <QString>

namespace quillon {

struct PdfFacts {
    QString Author;
    QString Subject;
};

/// Adds facts to the document's information, marks the fonts as the subsets that they are, and puts
/// the date that SOURCE_DATE_EPOCH asks for in place of the present one. `pdf` is a file of the
/// toolkit's.
void FinishPdf(QByteArray& pdf, const PdfFacts& facts);

}  // namespace quillon
