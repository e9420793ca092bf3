#ifndef KALVISTA_TOOL_PAGE_TEMPLATE_H
#define KALVISTA_TOOL_PAGE_TEMPLATE_H

namespace tool {

// The content of page.mustache, which the build puts here.
extern const char* const kPageTemplate;

}  // namespace tool

#endif  // KALVISTA_TOOL_PAGE_TEMPLATE_H
