// The product a report is of, as sending paces uploads per product.
#pragma once

#include <string>

namespace kelmur_feedback {

// The "Package Contents" of the report's products, else the product its
// problem section names ("Product"), as UTF-8; empty when the report names
// none (all such reports count as one product) or can't be read.
std::string productOf(std::string const& reportBytes);

}  // namespace kelmur_feedback
