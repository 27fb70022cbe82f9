#include "paper/systempaper.h"

#include "paper/dotpicture.h"
#include "paper/rollprinter.h"

namespace kvshare::paper {

namespace {

std::unique_ptr<TRollPrinter> RasterPrinter(TRoll roll, TRollWork work,
                                            std::unique_ptr<ByteTarget> target) {
  return std::make_unique<RollPictures>(roll,
                                        std::make_unique<RasterBytes>(std::move(target), work));
}

}  // namespace

std::unique_ptr<TPrinter> SystemPaper::QueuePrinter(std::string_view printer,
                                                    std::optional<TSheet> sheet) {
  return std::make_unique<SpoolerPrinter>(spooler_, printer, sheet);
}

std::unique_ptr<TPrinter> SystemPaper::PdfPrinter(std::string_view fileName, const TSheet& sheet) {
  return std::make_unique<kvshare::paper::PdfPrinter>(fileName, sheet);
}

std::unique_ptr<TRollPrinter> SystemPaper::RollPdfPrinter(std::string_view fileName, TRoll roll) {
  return std::make_unique<RollPdf>(fileName, roll);
}

std::unique_ptr<TRollPrinter> SystemPaper::RollPngPrinter(std::string_view fileName, TRoll roll) {
  return std::make_unique<RollPictures>(roll, std::make_unique<PngFiles>(fileName));
}

std::unique_ptr<TRollPrinter> SystemPaper::RollFilePrinter(std::string_view fileName, TRoll roll,
                                                           TRollWork work) {
  return RasterPrinter(roll, work, std::make_unique<FileTarget>(fileName));
}

std::unique_ptr<TRollPrinter> SystemPaper::RollQueuePrinter(std::string_view printer, TRoll roll,
                                                            TRollWork work) {
  return RasterPrinter(roll, work, std::make_unique<RawQueueTarget>(spooler_, printer));
}

TPicture SystemPaper::ReadPng(std::string_view bytes) {
  return PictureOfPng(bytes, kMostPictureSide);
}

}  // namespace kvshare::paper
