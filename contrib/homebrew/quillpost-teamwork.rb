# Builds the checkout that this file belongs to. Put a link to it into the Formula folder of a tap of
# your own, then: brew install --HEAD <tap>/quillpost-teamwork
class QuillpostTeamwork < Formula
  desc "Shared work board for AI coding agents: board, seat, command line"
  head "file://#{File.expand_path("../..", File.dirname(File.realpath(__FILE__)))}",
       using: :git, branch: "main"

  depends_on "boost" => :build # linked in, not needed at run time
  depends_on "cmake" => :build
  depends_on "cpp-httplib" => :build # headers alone, for the board's page
  depends_on "ninja" => :build
  depends_on "utf8proc" => :build # linked in, not needed at run time

  uses_from_macos "sqlite"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DBUILD_TESTING=OFF",
           "-DCMAKE_BUILD_TYPE=Release", *std_cmake_args
    system "cmake", "--build", "build", "--target", "programs"
    system "cmake", "--install", "build", "--component", "teamwork"
  end

  test do
    ping = '{"jsonrpc":"2.0","id":1,"method":"ping"}'
    assert_match '"result":{}', pipe_output(bin/"quillpost-teamwork", "#{ping}\n", 0)
    assert_match "serve", shell_output("#{bin}/quillpost-board --help")
    assert_empty pipe_output("#{bin}/quillpost-teamwork --wake-stop-hook", "{}", 0)
  end
end
