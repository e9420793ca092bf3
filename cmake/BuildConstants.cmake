# Constants that whoever builds the library may set; each is checked here, so that a wrong one is
# named at configure time and not met in the field.

set(KALVISTA_USB_PRODUCT_ID "7d3a" CACHE STRING
    "USB product id of the supported cameras: four lowercase hexadecimal digits")
set(KALVISTA_DOWNLOAD_LINKS_URL "https://downloads.example.com/kalvista/downloadlinks.xml" CACHE STRING
    "Address of the document that names the online calibration repositories")
set(KALVISTA_DOCUMENTATION_URL "https://docs.example.com/kalvista/index.html" CACHE STRING
    "Address of the documentation, written into default configurations")

if(NOT KALVISTA_USB_PRODUCT_ID MATCHES "^[0-9a-f][0-9a-f][0-9a-f][0-9a-f]$")
  message(FATAL_ERROR "KALVISTA_USB_PRODUCT_ID is \"${KALVISTA_USB_PRODUCT_ID}\"; "
                      "give four lowercase hexadecimal digits, such as 7d3a.")
endif()

# The address becomes part of a shell command, unquoted.
if(KALVISTA_DOWNLOAD_LINKS_URL STREQUAL "" OR NOT KALVISTA_DOWNLOAD_LINKS_URL MATCHES "^[A-Za-z0-9:/._~%@+=,-]+$"
   OR KALVISTA_DOWNLOAD_LINKS_URL MATCHES "^-")
  message(FATAL_ERROR "KALVISTA_DOWNLOAD_LINKS_URL is \"${KALVISTA_DOWNLOAD_LINKS_URL}\"; give an "
                      "address without quotes, blanks and characters that the shell acts on.")
endif()
if(KALVISTA_DOCUMENTATION_URL MATCHES "[\"\\\n]")
  message(FATAL_ERROR "KALVISTA_DOCUMENTATION_URL is \"${KALVISTA_DOCUMENTATION_URL}\"; give an "
                      "address without quotes, backslashes and line breaks.")
endif()
