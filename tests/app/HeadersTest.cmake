# Compiles every header by itself, included twice, with only its own library's dependencies: it must
# include what it needs, have an include guard, and use no more of Qt than its library may. There is
# nothing to run; the test app.Headers only checks that no header is missing here.
function(check_headers library)
  foreach(header ${ARGN})
    string(MAKE_C_IDENTIFIER "${header}" name)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "#include \"@header@\"\n#include \"@header@\"\n" @ONLY)
    list(APPEND sources "${source}")
  endforeach()
  add_library(headers_${library} OBJECT ${sources})
  target_link_libraries(headers_${library} PRIVATE ${library})
  set(checked_headers ${checked_headers} ${ARGN} PARENT_SCOPE)
endfunction()

check_headers(posix
  posix/LeadingNumber.h posix/PipeSignalBlock.h posix/StandardStreams.h
  posix/StoppableCalls.h posix/Worker.h)
check_headers(http
  http/HTTPClient.h http/HTTPRecords.h http/HTTPSession.h)
check_headers(link
  link/ControlClientThread.h link/GroundClientThread.h link/ModuleClientThread.h
  link/ModuleSocket.h link/ReceiveLoop.h link/VehicleFrame.h link/VersionText.h)
check_headers(card
  card/CardAnswers.h card/CardCommands.h card/FileInfoText.h card/NameTable.h
  card/NumberText.h card/SelectionRecord.h)
check_headers(cardwidgets
  card/FileTable.h card/NoFocusDelegate.h)
check_headers(download
  download/DownloadFileThread.h download/DownloadRequest.h download/LocalFile.h
  download/RecordingDownload.h download/ResponseHead.h download/resp_header.h)
check_headers(verify
  verify/AnswerReader.h verify/ByteComparison.h verify/Camera.h verify/CardReader.h verify/Comparison.h verify/Console.h
  verify/Json.h verify/Judgement.h verify/Language.h verify/LocalFolder.h verify/Numbers.h
  verify/Options.h verify/ShownText.h verify/Texts.h)
check_headers(app
  app/CutTextTip.h app/MainWindow.h app/ProcessSetup.h)
# The simulator is one program: its headers need no library.
check_headers(project_options
  simulator/AnswerBytes.h simulator/CameraAnswers.h simulator/CameraConnection.h
  simulator/CameraRequest.h simulator/Card.h simulator/Clock.h simulator/Connection.h
  simulator/Content.h simulator/ControlLines.h simulator/ControlSocket.h simulator/Device.h
  simulator/Fault.h simulator/FaultListing.h simulator/FaultTable.h simulator/FileDescriptor.h
  simulator/Journal.h simulator/LineReader.h simulator/Listener.h simulator/ModuleConnection.h
  simulator/Mp4Duration.h simulator/Occasion.h simulator/Options.h simulator/Outbox.h
  simulator/PrivateNetwork.h simulator/RecordedRun.h simulator/Replay.h simulator/SampleCard.h
  simulator/Scenario.h simulator/Simulator.h simulator/TcpStream.h simulator/Text.h)

add_test(NAME app.Headers
  COMMAND ${CMAKE_COMMAND} "-DROOT=${PROJECT_SOURCE_DIR}" "-DCHECKED=${checked_headers}"
          -P "${CMAKE_CURRENT_SOURCE_DIR}/HeadersComplete.cmake")
_belun_set_test_properties(app.Headers unit FALSE)
