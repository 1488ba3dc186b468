# Tests of the service file mail: the message and the sender against a local SMTP server, and
# the window offscreen.
vorkam_add_test(tst_ServiceMail SOURCES service/tst_ServiceMail.cpp service/LocalSmtp.h)
vorkam_add_test(tst_frmService APP SOURCES service/tst_frmService.cpp service/LocalSmtp.h)
foreach(t tst_ServiceMail tst_frmService)
  target_compile_definitions(${t} PRIVATE VORKAM_SMTP_SINK="${CMAKE_CURRENT_SOURCE_DIR}/service/smtp_sink.py")
endforeach()
