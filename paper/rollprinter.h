// Pages of receipt printers.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kvshare/ui/paper.h"
#include "paper/bytetarget.h"
#include "paper/dotpicture.h"
#include "paper/pagecanvas.h"
#include "paper/pdfdocument.h"

namespace kvshare::paper {

inline constexpr int kRollDotsPerInch = 203;

// What all rolls have in common: a canvas of dots and the length of a page.
class RollPages : public TRollPrinter {
 public:
  RollPages(TRoll roll, double scale, Inks inks);

  TSize PageSize() override;
  TSize PixelsPerInch() override { return {kRollDotsPerInch, kRollDotsPerInch}; }
  TCanvas& Canvas() override { return canvas_; }

 protected:
  void ThrowAway() noexcept override;
  void StartPage() override;

  virtual cairo_t* NewPage(TSize size) = 0;
  virtual void Drop() noexcept = 0;
  void DrawNothing() { canvas_.DrawNothing(); }
  TRoll Roll() const { return roll_; }

 private:
  TSize NextSize() const;

  TRoll roll_;
  PageCanvas canvas_;
  TSize size_;  // of the page that is drawn
};

// Letters as letters, so that they can be found and copied.
class RollPdf : public RollPages {
 public:
  RollPdf(std::string_view fileName, TRoll roll);

 protected:
  void StartJob() override;
  void FinishJob() override;
  cairo_t* NewPage(TSize size) override;
  void Drop() noexcept override;

 private:
  FileTarget target_;
  std::unique_ptr<PdfDocument> document_;
};

// Takes the pages of a job as pictures, one after another.
class DotTarget {
 public:
  DotTarget() = default;
  virtual ~DotTarget() = default;
  DotTarget(const DotTarget&) = delete;
  DotTarget& operator=(const DotTarget&) = delete;

  virtual void Begin(std::string_view title) = 0;
  virtual void Page(const DotPicture& page) = 0;
  virtual void Finish() = 0;
  virtual void Drop() noexcept = 0;
};

// NAME.png, NAME-2.png and so on.
class PngFiles : public DotTarget {
 public:
  explicit PngFiles(std::string_view fileName) : fileName_(fileName) {}

  void Begin(std::string_view /*title*/) override { pages_ = 0; }
  void Page(const DotPicture& page) override;
  void Finish() override {}
  void Drop() noexcept override {}

 private:
  std::string fileName_;
  int pages_ = 0;
};

class RasterBytes : public DotTarget {
 public:
  RasterBytes(std::unique_ptr<ByteTarget> target, TRollWork work)
      : target_(std::move(target)), work_(work) {}

  void Begin(std::string_view title) override;
  void Page(const DotPicture& page) override;
  void Finish() override { target_->Finish(); }
  void Drop() noexcept override { target_->Drop(); }

 private:
  std::unique_ptr<ByteTarget> target_;
  TRollWork work_;
};

// One picture at a time is in memory.
class RollPictures : public RollPages {
 public:
  RollPictures(TRoll roll, std::unique_ptr<DotTarget> target);

 protected:
  void StartJob() override;
  void FinishJob() override;
  cairo_t* NewPage(TSize size) override;
  void Drop() noexcept override;

 private:
  void EndPage();

  std::unique_ptr<DotTarget> target_;
  Surface image_;
  Context page_;
};

}  // namespace kvshare::paper
