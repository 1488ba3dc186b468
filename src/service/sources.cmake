# The service file mail: the message and the SMTP sender in vorkam_core, the window in
# vorkam_ui. Paths relative to src/.
target_sources(vorkam_core PRIVATE
  service/ServiceMail.cpp
  service/ServiceMail.h
  service/ServiceMailer.cpp
  service/ServiceMailer.h
)
target_include_directories(vorkam_core PUBLIC service)
# The mail goes out through libcurl's SMTP.
find_package(CURL REQUIRED)
target_link_libraries(vorkam_core PRIVATE CURL::libcurl)
target_sources(vorkam_ui PRIVATE
  service/frmService.cpp
  service/frmService.h
  service/frmService.ui
)
