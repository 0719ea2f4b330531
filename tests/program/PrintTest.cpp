// The Print command: what the dialog offers, what comes out, what is said when it does not.
#include "tests/program/ProgramTest.h"
#include "ui/dialogs/Printer.h"

#include <QFileInfo>

#include <set>

namespace {

using documents::frmText;

constexpr int kNothing = -1;

class PrintTest : public ProgramTest {
 protected:
  // The pages of the PDF file that was printed into.
  int Pages() const {
    if (!Exists(pdf_)) return kNothing;
    const std::string bytes = Bytes(pdf_);
    EXPECT_TRUE(bytes.starts_with("%PDF-") && bytes.find("%%EOF", bytes.size() - 10) != std::string::npos);
    int pages = 0;
    for (size_t at = 0; (at = bytes.find("/Type /Page\n", at)) != std::string::npos; ++at) ++pages;
    return pages;
  }
  void Answer(bool confirmed, bool offersSelection, QPrinter::PrintRange range, const files::Path& pdf) {
    dialogs.Printer(confirmed, [=](const ui::PrinterRequest& request, ui::Printer& printer) {
      EXPECT_FALSE(request.pages);
      EXPECT_EQ(request.selection, offersSelection);
      printer.device().setOutputFormat(QPrinter::PdfFormat);
      printer.device().setOutputFileName(QFile::decodeName(pdf.c_str()));
      printer.device().setPrintRange(range);
    });
  }
  const files::Path pdf_ = At("out.pdf");
};

TEST_F(PrintTest, TheSelectionOrAll) {
  struct Case {
    int64_t start, length;
    bool confirmed;
    QPrinter::PrintRange range;
    int pages;
  };
  // Three pages, the second of which begins at 4.
  const std::string text = "one\ftwo\fthree";
  const Case cases[] = {
      {0, 0, true, QPrinter::AllPages, 3},          {4, 3, true, QPrinter::Selection, 1},
      {0, 6, true, QPrinter::Selection, 2},         {4, 3, true, QPrinter::AllPages, 3},
      {4, 3, false, QPrinter::Selection, kNothing},
  };
  frmText& document = *Open(Put("pages.txt", text));
  for (const Case& c : cases) {
    std::filesystem::remove(pdf_);
    document.RichTextBox1().SetSelStart(c.start);
    document.RichTextBox1().SetSelLength(c.length);
    Answer(c.confirmed, c.length > 0, c.range, pdf_);
    document.mnuPrint_Click();
    EXPECT_EQ(Pages(), c.pages) << c.start << "+" << c.length << " range " << c.range;
    EXPECT_EQ(document.RichTextBox1().SelLength(), c.length);
    EXPECT_FALSE(Changed(document));
  }
}

TEST_F(PrintTest, AFileThatCannotBeWrittenOrWasCancelledLeavesWhatWasThere) {
  frmText& document = New();
  Type(document, "text");
  Put("out.pdf", "before");
  Answer(true, false, QPrinter::AllPages, pdf_);
  dialogs.CancelNextWork();
  document.mnuPrint_Click();
  EXPECT_EQ(Bytes(pdf_), "before");
  const files::Path nowhere = At("missing/out.pdf");
  Answer(true, false, QPrinter::AllPages, nowhere);
  ExpectError("Error: " + QString::fromStdString(nowhere.native()) + "\r\nNo such file or directory");
  document.mnuPrint_Click();
}

TEST_F(PrintTest, EachDocumentProposesAFileOfItsOwn) {
  std::set<QString> proposed;
  for (frmText* document : {Open(Put("a.txt", "")), Open(Put("b.txt", "")), &New(), &New()}) {
    dialogs.Printer(false, [&](const ui::PrinterRequest&, ui::Printer& printer) {
      EXPECT_TRUE(QFileInfo(printer.proposedFile()).isAbsolute());
      EXPECT_TRUE(printer.proposedFile().endsWith(".pdf"));
      EXPECT_TRUE(proposed.insert(printer.proposedFile()).second) << printer.proposedFile().toStdString();
    });
    document->mnuPrint_Click();
  }
}

}  // namespace
