// The terminal's side of a session: editing, history and keys by libedit, nothing else.
#include <histedit.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <memory>

#include "shell/history_file.h"
#include "shell/run.h"
#include "tool/problem.h"

namespace apconf_host
{

namespace
{

// What a signal does, for a while.
class signal_action
{
public:
    signal_action(int number, void (*handler)(int)) : number_(number)
    {
        struct sigaction action = {};
        action.sa_handler = handler;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, &before_);
    }
    ~signal_action() { sigaction(number_, &before_, nullptr); }
    signal_action(const signal_action &) = delete;
    signal_action &operator=(const signal_action &) = delete;

private:
    int number_;
    struct sigaction before_ = {};
};

termios settings_before = {};

// What ends or stops the program finds the terminal as it was before.
void give_back_terminal(int number)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &settings_before);
    const signal_action usual(number, SIG_DFL);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, number);
    raise(number);
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
}

// While it lives, keys such as Ctrl-C send signals.
class signals_from_keys
{
public:
    signals_from_keys()
    {
        tcgetattr(STDIN_FILENO, &before_);
        termios with = before_;
        with.c_lflag |= ISIG;
        tcsetattr(STDIN_FILENO, TCSANOW, &with);
    }
    ~signals_from_keys() { tcsetattr(STDIN_FILENO, TCSANOW, &before_); }
    signals_from_keys(const signals_from_keys &) = delete;
    signals_from_keys &operator=(const signals_from_keys &) = delete;

private:
    termios before_ = {};
};

bool input_waits()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0;
}

size_t terminal_width()
{
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// The columns that a text takes; a byte that is no character takes one.
size_t columns_of(const std::string &text)
{
    size_t columns = 0;
    mbstate_t state = {};
    for (size_t at = 0; at < text.size();) {
        wchar_t character = 0;
        const size_t length = mbrtowc(&character, text.data() + at, text.size() - at, &state);
        const bool valid = length > 0 && length <= text.size() - at;
        const int width = valid ? wcwidth(character) : 1;
        columns += width > 0 ? static_cast<size_t>(width) : 0;
        at += valid ? length : 1;
        if (!valid) state = {};
    }
    return columns;
}

struct history_release {
    void operator()(History *history) const { history_end(history); }
};
struct editor_release {
    void operator()(EditLine *editor) const { el_end(editor); }
};

class terminal
{
public:
    explicit terminal(session &session)
        : session_(session), history_(history_init()), editor_(el_init("apconf", stdin, stdout, stderr))
    {
        if (!history_ || !editor_) throw failure("the terminal cannot be used: memory is short");
        HistEvent event;
        history(history_.get(), &event, H_SETSIZE, static_cast<int>(history_file::most_lines));
        history(history_.get(), &event, H_SETUNIQUE, 1);
        set_up_editor();
    }

    enum class end_of_line { entered, interrupted, end_of_input };

    end_of_line read(const std::string &prompt, std::string &line)
    {
        prompt_ = prompt;
        session_.set_width(terminal_width());
        interrupted_ = false;
        int length = 0;
        const char *text = el_gets(editor_.get(), &length);
        if (text && length > 0) {
            line.assign(text, static_cast<size_t>(length));
            if (line.back() == '\n') line.pop_back();
            return end_of_line::entered;
        }
        const bool interrupted = interrupted_ || (length < 0 && errno == EINTR);
        putchar('\n');
        return interrupted ? end_of_line::interrupted : end_of_line::end_of_input;
    }

    void remember(const std::string &line)
    {
        HistEvent event;
        history(history_.get(), &event, H_ENTER, line.c_str());
    }

    // Under the place of the line that was just typed.
    void report(const problem &wrong, const std::string &line) const
    {
        const size_t column = columns_of(prompt_ + line.substr(0, wrong.column.value_or(0)));
        if (wrong.column && column < terminal_width()) printf("%s^\n", std::string(column, ' ').c_str());
        printf("%s\n", wrong.text.c_str());
    }

private:
    void set_up_editor()
    {
        EditLine *editor = editor_.get();
        el_set(editor, EL_CLIENTDATA, this);
        el_set(
            editor, EL_PROMPT, +[](EditLine *which) { return self(which).prompt_.data(); });
        el_set(editor, EL_EDITOR, "emacs");
        el_set(editor, EL_SIGNAL, 1);
        el_set(editor, EL_HIST, history, history_.get());
        el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
        add_key(L"apconf-complete", L"Complete the word", L"\t",
                [](EditLine *which, int) { return self(which).complete(); });
        add_key(L"apconf-help", L"Show what can stand here", L"?",
                [](EditLine *which, int) { return self(which).help(); });
        // Between two lines the terminal neither echoes nor edits: what is typed meanwhile waits for the next line.
        el_set(editor, EL_SETTY, "-x", "-icanon", "-echo", "-isig", nullptr);
        // Ctrl-C and Ctrl-Z as keys: a signal between two keys would be seen with the next one only, and the terminal
        // would drop what was typed before and printed last.
        el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
        add_key(L"apconf-clear", L"Leave the line", L"^C",
                [](EditLine *which, int) { return self(which).interrupt(); });
        add_key(L"apconf-stop", L"Back to the calling shell", L"^Z",
                [](EditLine *which, int) { return self(which).stop(); });
        el_source(editor, nullptr);  // the user's own keys
    }

    void add_key(const wchar_t *name, const wchar_t *description, const wchar_t *key,
                 unsigned char (*function)(EditLine *, int))
    {
        // The narrow calls would copy both texts and keep them for ever.
        el_wset(editor_.get(), EL_ADDFN, name, description, function);
        el_wset(editor_.get(), EL_BIND, key, name, nullptr);
    }

    static terminal &self(EditLine *editor)
    {
        void *data = nullptr;
        el_get(editor, EL_CLIENTDATA, &data);
        return *static_cast<terminal *>(data);
    }

    std::string before_cursor() const
    {
        const LineInfo *line = el_line(editor_.get());
        return {line->buffer, line->cursor};
    }

    unsigned char complete()
    {
        const std::string line = before_cursor();
        // The indentation of a pasted line.
        if (line.find_first_not_of(' ') == std::string::npos && input_waits()) return insert(" ");
        const completion found = session_.complete(line);
        if (!found.insertion.empty()) return insert(found.insertion);
        const std::string list = in_columns(found.candidates, terminal_width()) + found.help;
        return list.empty() ? CC_REFRESH_BEEP : print_below(list);
    }

    unsigned char help()
    {
        const std::string line = before_cursor();
        return split_words(line).open_quote ? insert("?") : print_below(session_.inline_help(line));
    }

    unsigned char insert(const std::string &text)
    {
        return el_insertstr(editor_.get(), text.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
    }

    // The rows that prompt and line take before the cursor's, and after it.
    struct rows_of_line {
        size_t above;
        size_t below;
    };
    rows_of_line rows() const
    {
        const LineInfo *line = el_line(editor_.get());
        const size_t width = terminal_width();
        const size_t cursor = columns_of(prompt_ + std::string(line->buffer, line->cursor)) / width;
        return {cursor, columns_of(prompt_ + std::string(line->buffer, line->lastchar)) / width - cursor};
    }

    // The editor then clears as many rows as the typed line takes, upwards from where it believes the cursor to be.
    unsigned char print_below(const std::string &text) const
    {
        const auto [above, below] = rows();
        printf("%s%s%s", std::string(below + 1, '\n').c_str(), text.c_str(), std::string(above, '\n').c_str());
        fflush(stdout);
        return CC_REDISPLAY;
    }

    // What was typed stays to be read; read() goes to the next row.
    unsigned char interrupt()
    {
        interrupted_ = true;
        fputs(std::string(rows().below, '\n').c_str(), stdout);
        return CC_EOF;
    }

    // All of the pipe that this program is in, as the key does elsewhere. Afterwards the line is shown again.
    unsigned char stop()
    {
        fputs(std::string(rows().below + 1, '\n').c_str(), stdout);
        fflush(stdout);
        el_set(editor_.get(), EL_PREP_TERM, 0);
        tcsetattr(STDIN_FILENO, TCSANOW, &settings_before);
        {
            const signal_action stopped(SIGTSTP, SIG_DFL);
            const signal_action continued(SIGCONT, SIG_DFL);
            kill(0, SIGTSTP);
        }
        el_set(editor_.get(), EL_PREP_TERM, 1);
        el_set(editor_.get(), EL_REFRESH);
        return CC_NORM;
    }

    session &session_;
    std::string prompt_;
    bool interrupted_ = false;
    std::unique_ptr<History, history_release> history_;
    std::unique_ptr<EditLine, editor_release> editor_;
};

// Asked once: who ends the input at the question means it.
bool may_leave(const session &session, terminal &terminal)
{
    if (!session.has_changes()) return true;
    std::string answer;
    const auto end = terminal.read("There are changes that are not committed. Leave and lose them? [y/N] ", answer);
    if (end == terminal::end_of_line::end_of_input) return true;
    return end == terminal::end_of_line::entered && (answer == "y" || answer == "yes");
}

void execute(session &session, const std::string &line, terminal &terminal, const history_file &file)
{
    reply reply;
    {
        // A server that never answers must not hold anybody.
        const signal_action usual(SIGINT, give_back_terminal);
        const signals_from_keys keys;
        reply = session.execute(line);
    }
    fputs(reply.output.c_str(), stdout);
    if (reply.wrong) terminal.report(*reply.wrong, line);
    if (line.find_first_not_of(' ') != std::string::npos) terminal.remember(line);
    if (reply.keepable) file.append(line);
}

}  // namespace

int run_on_terminal(session &session)
{
    setlocale(LC_CTYPE, "");
    tcgetattr(STDIN_FILENO, &settings_before);
    const signal_action interrupted(SIGINT, [](int) {});
    const signal_action hung_up(SIGHUP, give_back_terminal);
    const signal_action terminated(SIGTERM, give_back_terminal);
    const signal_action quit(SIGQUIT, give_back_terminal);
    const signal_action stopped(SIGTSTP, give_back_terminal);
    const history_file file = history_file::of_user();
    terminal terminal(session);
    const std::vector<std::string> earlier = file.load();
    for (const std::string &line : earlier) terminal.remember(line);
    session.remember(earlier);

    puts("Tab completes, ? shows what can stand at the cursor, 'help' tells more.");
    while (true) {
        if (!input_waits()) session.pause();
        std::string line;
        const auto end = terminal.read(session.prompt(), line);
        if (end == terminal::end_of_line::entered) execute(session, line, terminal, file);
        if (end == terminal::end_of_line::interrupted) continue;
        const bool leaves = end == terminal::end_of_line::end_of_input || session.ended();
        if (leaves && may_leave(session, terminal)) return EXIT_DONE;
        session.stay();
    }
}

}  // namespace apconf_host
